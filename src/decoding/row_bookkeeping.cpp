#include "decoding/row_bookkeeping.h"

#include <charconv>
#include <string>

#include "decoding/cell_reading.h"
#include "decoding/row_history.h"
#include "decoding/stamps.h"
#include "output/output_steps.h"

namespace vantrel {
namespace {

constexpr char kTab = '\t';
constexpr std::string_view kDashes = "----------------";
constexpr int32_t kRecordCountLimit = 2147483647;

// The stamps the host asked to see in front of the row's data.
void AppendEventText(const Module& m, std::string_view status, std::string_view data,
                     std::string& text) {
  if (m.props.DateStampCol) (text += m.stamp.date) += kTab;
  if (m.props.TimeStampCol) (text += m.stamp.time) += kTab;
  if (m.props.PCDStatusCol) (text += status) += kTab;
  text += data;
}

// The trace cells' texts joined by tabs, as OutputLine and the history carry them.
void AppendDisplayLine(const CellRow& cells, size_t first, std::string& text) {
  for (size_t i = first; i < cells.Size(); ++i) {
    if (i > first) text += kTab;
    text += cells.Text(i);
  }
}

// The record number, PC date, PC time and status cells that begin every row.
void AppendStampCells(const Module& m, int32_t recordNumber, std::string_view status,
                      CellRow& cells) {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, recordNumber).ptr;
  const std::string_view number(digits, static_cast<size_t>(end - digits));
  cells.AppendDecimal(number, {}, recordNumber, CellValue::Integer(recordNumber));
  cells.Append(m.stamp.date, {}, 0, CellValue::Text(), m.stamp.dateReading);
  cells.Append(m.stamp.time, {}, 0, CellValue::Text(), m.stamp.timeReading);
  cells.Append(status, {}, 0, status.empty() ? CellValue{} : CellValue::Text(),
               ReadCellText(status, m.decimalSeparator, false));
}

int TraceColumnCount(const Module& m) {
  return std::max(m.grid.ColumnCount() - kFirstTraceColumn, 0);
}

void AddMarkerRow(Module& m, RowKind kind, const std::string& status, int64_t missed) {
  // The marker's dashes fill every trace column (a Miss row leaves the first empty), and
  // OutputLine has always carried two more.
  const int traceColumns = TraceColumnCount(m);
  const bool firstToo = kind == RowKind::Restart;
  std::string filler;
  if (firstToo) filler += kDashes;
  for (int k = 0; k <= traceColumns; ++k)
    (filler += kTab) += kDashes;

  m.grid.AppendRow([&](TableRow& row) {
    row.kind = kind;
    row.recordNumber = m.walk.RecordCount;
    row.pcTime = m.stamp.at;
    row.missed = missed;
    AppendStampCells(m, m.walk.RecordCount, status, row.stamps);
    for (int k = 0; k < traceColumns; ++k) {
      const std::string_view text = k == 0 && !firstToo ? std::string_view() : kDashes;
      row.cells.Append(text, {}, 0, {}, {});
    }
  });

  std::string event;
  AppendEventText(m, status, filler, event);
  m.events.OutputLine(event);
  AnnounceMarkerRow(m, kind, status, filler, missed);
}

void ScrollToNewest(Module& m) {
  const int32_t rowHeight = m.grid.RowHeight();
  const int visible = rowHeight > 0 ? static_cast<int>(m.grid.ViewHeight() / rowHeight) : 0;
  if (m.grid.RowCount() > visible) {
    const int top = std::max(1, std::min(m.grid.RowCount() - visible + 1, m.grid.RowCount() - 1));
    m.grid.SetTopRow(top);
  }
}

void ReportFailedRecord(Module& m, const std::string& message) {
  m.services.prompts.ShowMessage(message, "Vantrel", MessageIcon::Exclamation, MessageButtons::Ok);
}

}  // namespace

void SetRowStamp(Module& m, const DateTime& now) {
  RowStamp& s = m.stamp;
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
  s.dateReading = ReadCellText(s.date, m.decimalSeparator, true);
  s.timeReading = ReadCellText(s.time, m.decimalSeparator, true);
}

bool DecodeRecord(Module& m, std::span<const int32_t> registers, size_t first) {
  SetRowStamp(m, m.services.clock.Now());
  DecodedRecord& record = m.decoded;
  const bool decoded = m.decoder.Decode(registers, first, m.decoding, record);
  for (const std::string& error : record.readerErrors)
    m.RaiseError(kErrFieldReader, error);
  if (!decoded) {
    ReportFailedRecord(m, record.failureMessage);
    return false;
  }
  try {
    AddRecordRow(m, record.cells);
  } catch (const RuntimeError& e) {
    if (record.passesOverFailures) return true;
    ReportFailedRecord(m, e.Description());
    return false;
  }
  return true;
}

void AddRecordRow(Module& m, CellRow& traceCells, RowKind kind) {
  // Record rows come at full rate: their texts are built in a buffer kept by the module.
  std::string& event = m.eventText;
  event.clear();
  AppendEventText(m, m.PCDStatusText, {}, event);
  AppendDisplayLine(traceCells, 0, event);
  m.events.OutputLine(event);

  if (m.walk.RecordCount >= kRecordCountLimit) {
    m.walk.RecordCount = 0;
    m.surface.recordCount.foreColor = kColorRed;
  } else {
    ++m.walk.RecordCount;
  }
  m.surface.recordCount.caption = std::to_string(m.walk.RecordCount);

  const int rows = m.grid.DataRowCount();
  if (rows < m.props.MaxRows) {
    m.surface.rowCount = {std::to_string(rows + 1), kColorBlack};
  } else if (m.props.AutoExport) {
    ExportFromButton(m);
  } else if (rows > 0) {
    m.grid.RemoveRow(1);
    m.surface.rowCount = {std::to_string(m.props.MaxRows), kColorRed};
  }
  m.SurfaceChanged();

  m.grid.AppendRow([&](TableRow& row) {
    row.kind = kind;
    row.recordNumber = m.walk.RecordCount;
    row.pcTime = m.stamp.at;
    AppendStampCells(m, m.walk.RecordCount, m.PCDStatusText, row.stamps);
    std::swap(row.cells, traceCells);
  });
  AnnounceRecordRow(m, kind, m.grid.Row(m.grid.RowCount() - 1).cells);

  if (m.GraphShown) RefreshGraph(m);
  ScrollToNewest(m);
}

void AddMissRow(Module& m, int64_t missed) {
  AddMarkerRow(m, RowKind::Miss, "Miss " + std::to_string(missed), missed);
}

void AddRestartRow(Module& m) {
  AddMarkerRow(m, RowKind::Restart, "Restart", 0);
}

}  // namespace vantrel
