#include "decoding/row_store.h"

#include <algorithm>
#include <charconv>

#include "decoding/cell_reading.h"
#include "decoding/stamps.h"
#include "description/field_types.h"

namespace vantrel {
namespace {

constexpr char kTab = '\t';
constexpr std::string_view kDashes = "----------------";
constexpr int32_t kRecordCountLimit = 2147483647;

void AppendStamps(const RowStamp& stamp, LineStamps stamps, std::string_view status,
                  std::string& text) {
  if (stamps.date) (text += stamp.date) += kTab;
  if (stamps.time) (text += stamp.time) += kTab;
  if (stamps.status) (text += status) += kTab;
}

// The trace cells' texts joined by tabs, as OutputLine and the row sinks carry them.
void AppendCellTexts(const CellRow& cells, std::string& text) {
  for (size_t i = 0; i < cells.Size(); ++i) {
    if (i > 0) text += kTab;
    text += cells.Text(i);
  }
}

}  // namespace

void RowStore::StampAt(const DateTime& now) {
  RowStamp& s = stamp_;
  s.at = now;
  // Records of one poll share the clock's second: format the stamps only when it moves.
  if (s.valid && now.second == s.shown.second && now.minute == s.shown.minute &&
      now.hour == s.shown.hour && now.day == s.shown.day && now.month == s.shown.month &&
      now.year == s.shown.year) {
    return;
  }
  s.shown = now;
  s.valid = true;
  s.date = FormatStatusDate(now);
  s.time = FormatStatusTime(now);
  s.dateReading = ReadCellText(s.date, decimalSeparator_, true);
  s.timeReading = ReadCellText(s.time, decimalSeparator_, true);
}

bool RowStore::CountRecord() {
  if (recordCount_ >= kRecordCountLimit) {
    recordCount_ = 0;
    return false;
  }
  ++recordCount_;
  return true;
}

// The record number, PC date, PC time and status cells that begin every row.
void RowStore::AppendStampCells(std::string_view status, CellRow& cells) const {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, recordCount_).ptr;
  const std::string_view number(digits, static_cast<size_t>(end - digits));
  cells.AppendDecimal(number, {}, recordCount_, CellValue::Integer(recordCount_));
  cells.Append(stamp_.date, {}, 0, CellValue::Text(), stamp_.dateReading);
  cells.Append(stamp_.time, {}, 0, CellValue::Text(), stamp_.timeReading);
  cells.Append(status, {}, 0, status.empty() ? CellValue{} : CellValue::Text(),
               ReadCellText(status, decimalSeparator_, false));
}

void RowStore::OutputRecordLine(const CellRow& traceCells, std::string_view status,
                                LineStamps stamps) {
  line_.clear();
  AppendStamps(stamp_, stamps, status, line_);
  AppendCellTexts(traceCells, line_);
  output_(line_);
}

void RowStore::AppendRecord(CellRow& traceCells, RowKind kind, std::string_view status) {
  table_.AppendRow([&](TableRow& row) {
    row.kind = kind;
    row.recordNumber = recordCount_;
    row.pcTime = stamp_.at;
    AppendStampCells(status, row.stamps);
    std::swap(row.cells, traceCells);
  });
  if (sinks_.empty()) return;
  const CellRow& cells = table_.Row(table_.RowCount() - 1).cells;
  HistoryRow row;
  row.kind = kind;
  row.recordNumber = recordCount_;
  row.pcTime = stamp_.at;
  row.status = std::string(status);
  AppendCellTexts(cells, row.line);
  const size_t count = cells.Size();
  // A status row of a description without columns has no cells at all; a record row of one
  // has a single empty cell, as its line reads.
  const size_t shown = count == 0 && kind != RowKind::Status ? 1 : count;
  row.display.resize(shown);
  row.raw.resize(kind == RowKind::Record ? count : shown);
  row.number.resize(shown);
  if (kind == RowKind::Record) {
    for (size_t i = 0; i < count; ++i) {
      row.display[i] = cells.Text(i);
      row.raw[i] = std::to_string(cells.Raw(i));
      row.number[i] = cells.Number(i);
    }
  }
  Announce(row);
}

void RowStore::AppendMarker(RowKind kind, const std::string& status, int64_t missed,
                            LineStamps stamps) {
  // The marker's dashes fill every trace column (a Miss row leaves the first empty), and
  // OutputLine has always carried two more.
  const int traceColumns = std::max(table_.ColumnCount() - kFirstTraceColumn, 0);
  const bool firstToo = kind == RowKind::Restart;
  std::string filler;
  if (firstToo) filler += kDashes;
  for (int k = 0; k <= traceColumns; ++k)
    (filler += kTab) += kDashes;

  table_.AppendRow([&](TableRow& row) {
    row.kind = kind;
    row.recordNumber = recordCount_;
    row.pcTime = stamp_.at;
    row.missed = missed;
    AppendStampCells(status, row.stamps);
    for (int k = 0; k < traceColumns; ++k) {
      const std::string_view text = k == 0 && !firstToo ? std::string_view() : kDashes;
      row.cells.Append(text, {}, 0, {}, {});
    }
  });

  std::string event;
  AppendStamps(stamp_, stamps, status, event);
  event += filler;
  output_(event);
  if (sinks_.empty()) return;
  HistoryRow row;
  row.kind = kind;
  row.recordNumber = recordCount_;
  row.pcTime = stamp_.at;
  row.status = status;
  row.missed = missed;
  row.line = filler;
  Announce(row);
}

void RowStore::ScrollToNewest() {
  const int32_t rowHeight = table_.RowHeight();
  const int visible = rowHeight > 0 ? static_cast<int>(table_.ViewHeight() / rowHeight) : 0;
  if (table_.RowCount() > visible) {
    const int top = std::max(1, std::min(table_.RowCount() - visible + 1, table_.RowCount() - 1));
    table_.SetTopRow(top);
  }
}

void RowStore::AddSink(RowSink* sink) {
  if (sink != nullptr) sinks_.push_back(sink);
}

void RowStore::RemoveSink(RowSink* sink) {
  std::erase(sinks_, sink);
}

void RowStore::Announce(const HistoryRow& row) {
  for (RowSink* sink : sinks_)
    sink->RowAdded(row);
}

void RowStore::AnnounceDescription(const HistoryDescription& description) {
  for (RowSink* sink : sinks_)
    sink->DescriptionLoaded(description);
}

HistoryDescription HistoryDescriptionOf(const TraceDescription& description, std::string key) {
  HistoryDescription d;
  d.key = std::move(key);
  d.title = description.Title;
  d.version = description.DescVersion;
  const int highest = std::min<int>(description.ColumnCount, 127);
  for (int number = 0; number <= highest; ++number) {
    const ColumnDef& c = description.Columns[static_cast<size_t>(number)];
    if (!c.Defined) continue;
    d.columns.push_back({c.Caption, c.RegisterIndex, FieldTypeWord(c.FieldType), c.Position,
                         c.DisplayCode, c.Width});
  }
  return d;
}

}  // namespace vantrel
