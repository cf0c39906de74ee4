#include "decoding/row_history.h"

#include "description/field_types.h"
#include "platform/numbers.h"

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

void AnnounceRecordRow(Module& m, std::string_view displayLine) {
  if (m.rowSinks.empty()) return;
  HistoryRow row;
  row.kind = m.addingStatusRow ? HistoryRowKind::Status : HistoryRowKind::Record;
  row.recordNumber = m.walk.RecordCount;
  row.pcTime = m.StampAt;
  row.status = m.PCDStatusText;
  row.line = displayLine;
  size_t start = 0;
  // A status row of a description without columns has no cells at all.
  if (displayLine.empty() && row.kind == HistoryRowKind::Status) start = 1;
  while (start <= displayLine.size()) {
    const size_t tab = std::min(displayLine.find('\t', start), displayLine.size());
    row.display.emplace_back(displayLine.substr(start, tab - start));
    start = tab + 1;
  }
  if (row.kind == HistoryRowKind::Record) {
    row.raw = m.decodeScratch.columnRaw;
    row.number.reserve(row.display.size());
    for (const std::string& text : row.display)
      row.number.push_back(NumberValue(text, m.decimalSeparator));
  } else {
    row.display.assign(row.display.size(), std::string());
    row.raw.assign(row.display.size(), std::string());
    row.number.assign(row.display.size(), std::nullopt);
  }
  Send(m, row);
}

void AnnounceMarkerRow(Module& m, HistoryRowKind kind, std::string_view status,
                       std::string_view filler, int64_t missed) {
  if (m.rowSinks.empty()) return;
  HistoryRow row;
  row.kind = kind;
  row.recordNumber = m.walk.RecordCount;
  row.pcTime = m.StampAt;
  row.status = std::string(status);
  row.missed = missed;
  row.line = filler;
  Send(m, row);
}

}  // namespace vantrel
