#pragma once
// Exports in formats beside the built-in Excel 2.x file. The control decides what is
// exported (the selected or shown columns, the target name) and hands a writer an
// ExportSource; ReadExportCell gives each cell as the value it stands for, so that every
// format types cells alike: dates and times as calendar values, numbers as numbers (read
// with the table's decimal separator), everything else as text.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vantrel/clock.h"
#include "vantrel/export_files.h"
#include "vantrel/table_model.h"

namespace vantrel {

enum class ExportCellKind { General, Text, Date, Time, DateTime };

// One exported column: what the table shows, and for a trace column how it was decoded.
struct ExportColumn {
  int gridColumn = 0;
  std::string caption;  // Windows-1252 bytes, as every text of the table
  int32_t widthTwips = 0;
  ExportCellKind kind = ExportCellKind::General;
  bool traceColumn = false;
  int16_t registerIndex = 0;
  std::string fieldType;  // "Bit", "Nible", "Byte", "Word", "Long", "Strg"
  int16_t position = 0;
  std::string displayCode;
};

struct ExportSource {
  const TableModel* table = nullptr;
  std::vector<ExportColumn> columns;
  char decimalSeparator = '.';
  std::string title;
  std::string key;
  int32_t version = 0;
  // How the writer opens and replaces files; null for the standard library's way.
  ExportFiles* files = nullptr;
};

struct ExportCell {
  enum class Type { Empty, Number, Text, DateTime };
  Type type = Type::Empty;
  double number = 0;      // a Number, or a DateTime as a spreadsheet serial (days since 1899-12-30)
  std::string_view text;  // the table's text (Windows-1252), for a Text and as shown otherwise
  DateTime when;          // a DateTime's parts; a time alone has the date 1899-12-30
};

// The cell of data row `row` (1-based, as the table counts) in exported column `column`.
ExportCell ReadExportCell(const ExportSource& source, int row, size_t column);

// A writer of one export format.
class TableExporter {
 public:
  virtual ~TableExporter() = default;
  // Writes the header row and every data row of the source's columns to `path`; false with
  // `error` set when the file could not be written completely.
  virtual bool Export(const ExportSource& source, const std::string& path, std::string& error) = 0;
};

}  // namespace vantrel
