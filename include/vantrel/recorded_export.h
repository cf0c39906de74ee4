#pragma once
// Rows kept by a record history, shown and exported again as the control showed and
// exported them live: the same lines, the same columns, the same export files.

#include <cstdint>
#include <span>
#include <string>

#include "vantrel/clock.h"
#include "vantrel/row_sink.h"
#include "vantrel/table_export.h"

namespace vantrel {

// A row as a history gives it back.
struct RecordedRow {
  HistoryRowKind kind = HistoryRowKind::Record;
  int32_t recordNumber = 0;
  DateTime pcTime;
  std::string status;  // Windows-1252 bytes, as the table holds them
  std::string line;    // the cells after the stamp columns, tab-separated
};

// Which of the stamp columns are shown (the trace columns always are).
struct RecordedStamps {
  bool date = false;
  bool time = false;
  bool status = false;
};

// The line OutputLine carried for the row: the stamps asked for, then its cells.
std::string RecordedLine(const RecordedRow& row, RecordedStamps stamps);

// The captions of the columns such lines carry, tab-separated.
std::string RecordedHeader(const HistoryDescription& description, RecordedStamps stamps);

struct RecordedExport {
  std::string file;               // the export file, as the ExportFile property takes it
  int16_t format = 0;             // as the ExportFormat property: 0 Excel 2.x, 1 xlsx, 2 csv
  RecordedStamps stamps;          // the stamp columns exported
  TableExporter* xlsx = nullptr;  // the .xlsx writer, needed for format 1
  ExportFiles* files = nullptr;   // how files are opened; null for the standard library's way
};

// Builds the table the control would have held for these rows and exports it through the
// control's own export. True when the file was written; `message` says where, or why not.
bool ExportRecordedRows(const HistoryDescription& description, std::span<const RecordedRow> rows,
                        const RecordedExport& how, std::string& message);

}  // namespace vantrel
