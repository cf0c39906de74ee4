#pragma once
// A record table on its own, for tests of the components that fill and read it: a trace
// description filled by hand, the table built from it, and rows added through a row store
// from the texts their cells show.

#include <string>
#include <vector>

#include "decoding/cell_reading.h"
#include "decoding/row_store.h"
#include "decoding/table_layout.h"
#include "output/export_service.h"
#include "output/trace_export.h"
#include "support/export_files_under_test.h"

namespace vantrel::testing {

// Defines trace column `number` of `description` by hand and returns it for further settings.
inline ColumnDef& DefineColumn(TraceDescription& description, int number, int16_t type, int16_t reg,
                               int16_t position, const std::string& caption,
                               const std::string& code) {
  ColumnDef& c = description.Columns[static_cast<size_t>(number)];
  c.Defined = -1;
  c.FieldType = type;
  c.RegisterIndex = reg;
  c.Position = position;
  c.Caption = caption;
  c.DisplayCode = code;
  if (number > description.ColumnCount) description.ColumnCount = static_cast<int16_t>(number);
  return c;
}

struct TraceTable {
  TraceDescription description;
  TableModel table;
  char decimalSeparator = '.';
  std::vector<std::string> lines;  // the OutputLine texts of the rows
  RowStore rows{table, decimalSeparator, [this](std::string_view l) { lines.emplace_back(l); }};
  ShownStamps shown;  // the stamp columns shown, in the table and in the lines
  std::string status;

  // Defines trace column `number` and returns it for further settings.
  ColumnDef& Define(int number, int16_t type, int16_t reg, int16_t position,
                    const std::string& caption, const std::string& code, int32_t width = 800) {
    ColumnDef& c = DefineColumn(description, number, type, reg, position, caption, code);
    c.Width = width;
    return c;
  }

  void Build() {
    const std::string font = "Courier";
    const std::string size = "10";
    BuildTable(table, description, {font, size, shown.date, shown.time, shown.status});
    rows.ResetRecordCount();
  }

  // Appends a record row of these texts, each read as the cells of its table column are.
  void AddTextRow(const std::vector<std::string>& texts) {
    CellRow cells;
    for (size_t i = 0; i < texts.size(); ++i) {
      const int column = kFirstTraceColumn + static_cast<int>(i);
      const bool date =
          column < table.ColumnCount() &&
          IsDateKind(ExportKindOfCode(
              description.Columns[static_cast<size_t>(table.ColumnData(column))].DisplayCode));
      AppendTextCell(cells, texts[i], decimalSeparator, date);
    }
    rows.OutputRecordLine(cells, status, Stamps());
    rows.CountRecord();
    rows.AppendRecord(cells, RowKind::Record, status);
  }
  void AddMissRow(int64_t missed) {
    rows.AppendMarker(RowKind::Miss, "Miss " + std::to_string(missed), missed, Stamps());
  }
  // Stamps the next rows at `hour`:`minute`:`second` on 15 November 2026.
  void StampAt(int hour, int minute, int second, int day = 15) {
    rows.StampAt(DateTime{2026, 11, day, hour, minute, second, 0});
  }
  // The same from "hh:mm:ss".
  void StampAt(const std::string& hhmmss) {
    StampAt(std::stoi(hhmmss.substr(0, 2)), std::stoi(hhmmss.substr(3, 2)),
            std::stoi(hhmmss.substr(6, 2)));
  }
  LineStamps Stamps() const { return {shown.date, shown.time, shown.status}; }

  // Exports the chosen columns of the table to `target`.
  ExportResult Export(int16_t format, const std::string& target, TableExporter* xlsx = nullptr,
                      bool checkWritable = false) {
    ExportRequest request;
    request.checkWritable = checkWritable;
    request.format = format;
    request.target = target;
    request.xlsx = xlsx;
    request.source = TraceExportSource(table, description, shown, decimalSeparator);
    request.source.files = &ExportFilesUnderTest();
    return ExportTable(std::move(request));
  }
  std::vector<std::string> Row(int r) const {
    std::vector<std::string> cells;
    for (int c = 0; c < table.ColumnCount(); ++c)
      cells.emplace_back(table.Text(r, c));
    return cells;
  }
};

}  // namespace vantrel::testing
