#pragma once
// One call that writes the rows of a table to a spreadsheet file: the Excel 2.x file, an
// .xlsx workbook or a CSV file, for the columns chosen once by the caller. Nothing is shown:
// the result says what was written and what the user is to be told, in order.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vantrel/prompts.h"
#include "vantrel/table_export.h"

namespace vantrel {

inline constexpr int16_t kExportExcel2 = 0;
inline constexpr int16_t kExportXlsx = 1;
inline constexpr int16_t kExportCsv = 2;

struct ExportRequest {
  ExportSource source;  // the table, the chosen columns and what describes the trace
  int16_t format = kExportExcel2;
  std::string target;             // the file written
  TableExporter* xlsx = nullptr;  // the .xlsx writer, needed for kExportXlsx
  // Refuse a target that exists but does not take a write at its start.
  bool checkWritable = false;
  // Called once the target is accepted, right before it is written; it may choose the
  // source then (the control raises NewExportFile first, and its host may change the table).
  std::function<void(ExportSource&)> starting;
};

struct ExportMessage {
  std::string text;
  std::string title;
  MessageIcon icon = MessageIcon::None;
  // Shown only when the user asked for the export and is waiting for its outcome; the
  // spreadsheet writer's own failures are shown whatever started the export.
  bool toRequester = true;
};

struct ExportResult {
  // The file holds the rows: the table they came from may be emptied.
  bool written = false;
  // The export ended on a failure (the outcome says which); nothing of the file is left.
  bool failed = false;
  // What the user is told while the file is written, in order.
  std::vector<ExportMessage> messages;
  // What the user is told of the outcome: where the rows went, that there was nothing to
  // export, or the failure.
  ExportMessage outcome;
  // The text of the last column that could not be written.
  std::string lastColumnError;
};

// The file's name when an export has none: "Vantrel.xls", "Vantrel.xlsx" or "Vantrel.csv".
std::string_view DefaultExportName(int16_t format);

// Writes the request's rows; a file that could not be written completely is removed.
ExportResult ExportTable(ExportRequest request);

}  // namespace vantrel
