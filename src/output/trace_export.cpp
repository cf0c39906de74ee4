#include "output/trace_export.h"

#include <string>

#include "decoding/cell_reading.h"
#include "description/field_types.h"

namespace vantrel {
namespace {

const ColumnDef* DefinitionOf(const TableModel& table, const TraceDescription& description,
                              int column) {
  if (column < kFirstTraceColumn) return nullptr;
  const int32_t definition = table.ColumnData(column);
  if (definition < 0 || definition >= static_cast<int32_t>(description.Columns.size())) {
    return nullptr;
  }
  return &description.Columns[static_cast<size_t>(definition)];
}

ExportCellKind KindOfColumn(const TableModel& table, const TraceDescription& description,
                            int column) {
  if (column == kPcDateColumn) return ExportCellKind::Date;
  if (column == kPcTimeColumn) return ExportCellKind::Time;
  if (column == kStatusColumn) return ExportCellKind::General;
  const ColumnDef* d = DefinitionOf(table, description, column);
  return d != nullptr ? ExportKindOfCode(d->DisplayCode) : ExportCellKind::General;
}

}  // namespace

std::vector<int> ExportedColumns(const TableModel& table, ShownStamps shown) {
  std::vector<int> columns;
  const int last = table.ColumnCount() - 1;
  for (int column = 1; column <= last; ++column) {
    if (table.Selected(column)) columns.push_back(column);
  }
  if (!columns.empty()) return columns;
  for (int column = 1; column <= last; ++column) {
    if ((column == kPcDateColumn && !shown.date) || (column == kPcTimeColumn && !shown.time) ||
        (column == kStatusColumn && !shown.status)) {
      continue;
    }
    columns.push_back(column);
  }
  return columns;
}

ExportSource TraceExportSource(const TableModel& table, const TraceDescription& description,
                               ShownStamps shown, char decimalSeparator) {
  ExportSource source;
  source.table = &table;
  source.decimalSeparator = decimalSeparator;
  source.title = description.Title;
  source.key = description.HeaderKeyText;
  source.version = description.DescVersion;
  for (const int column : ExportedColumns(table, shown)) {
    ExportColumn c;
    c.gridColumn = column;
    c.caption = std::string(table.Text(0, column));
    c.widthTwips = table.ColumnWidth(column);
    c.kind = KindOfColumn(table, description, column);
    if (const ColumnDef* d = DefinitionOf(table, description, column)) {
      c.traceColumn = true;
      c.registerIndex = d->RegisterIndex;
      c.fieldType = FieldTypeWord(d->FieldType);
      c.position = d->Position;
      c.displayCode = d->DisplayCode;
    }
    source.columns.push_back(std::move(c));
  }
  return source;
}

}  // namespace vantrel
