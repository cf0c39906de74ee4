#include "decoding/row_history.h"

#include "description/field_types.h"

namespace vantrel {
namespace {

void Send(Module& m, const HistoryRow& row) {
  for (RowSink* sink : m.rowSinks)
    sink->RowAdded(row);
}

}  // namespace

void AnnounceDescription(Module& m) {
  if (m.rowSinks.empty()) return;
  HistoryDescription d;
  d.key = m.buffer.HeaderKey;
  d.title = m.description.Title;
  d.version = m.description.DescVersion;
  // The columns in the order the decoder fills the row's cells.
  const int highest = std::min<int>(m.description.ColumnCount, 127);
  for (int number = 0; number <= highest; ++number) {
    const ColumnDef& c = m.description.Columns[static_cast<size_t>(number)];
    if (!c.Defined) continue;
    d.columns.push_back({c.Caption, c.RegisterIndex, FieldTypeWord(c.FieldType), c.Position,
                         c.DisplayCode, c.Width});
  }
  for (RowSink* sink : m.rowSinks)
    sink->DescriptionLoaded(d);
}

void AnnounceRecordRow(Module& m, RowKind kind, const CellRow& traceCells) {
  if (m.rowSinks.empty()) return;
  HistoryRow row;
  row.kind = kind;
  row.recordNumber = m.walk.RecordCount;
  row.pcTime = m.stamp.at;
  row.status = m.PCDStatusText;
  const size_t count = traceCells.Size();
  for (size_t i = 0; i < count; ++i) {
    if (i > 0) row.line += '\t';
    row.line += traceCells.Text(i);
  }
  // A status row of a description without columns has no cells at all; a record row of one
  // has a single empty cell, as its line reads.
  const size_t cells = count == 0 && kind != RowKind::Status ? 1 : count;
  row.display.resize(cells);
  row.raw.resize(kind == RowKind::Record ? count : cells);
  row.number.resize(cells);
  if (kind == RowKind::Record) {
    for (size_t i = 0; i < count; ++i) {
      row.display[i] = traceCells.Text(i);
      row.raw[i] = std::to_string(traceCells.Raw(i));
      row.number[i] = traceCells.Number(i);
    }
  }
  Send(m, row);
}

void AnnounceMarkerRow(Module& m, HistoryRowKind kind, std::string_view status,
                       std::string_view filler, int64_t missed) {
  if (m.rowSinks.empty()) return;
  HistoryRow row;
  row.kind = kind;
  row.recordNumber = m.walk.RecordCount;
  row.pcTime = m.stamp.at;
  row.status = std::string(status);
  row.missed = missed;
  row.line = filler;
  Send(m, row);
}

}  // namespace vantrel
