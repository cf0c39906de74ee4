#include "decoding/row_bookkeeping.h"

#include <charconv>
#include <string>

#include "decoding/row_history.h"
#include "output/output_steps.h"

namespace vantrel {
namespace {

constexpr char kTab = '\t';
constexpr std::string_view kDashes = "----------------";
constexpr int32_t kRecordCountLimit = 2147483647;

void AppendEventText(const Module& m, std::string_view status, std::string_view data,
                     std::string& text);

// The stamps the host asked to see in front of the row's data.
std::string EventText(const Module& m, std::string_view status, std::string_view data) {
  std::string text;
  AppendEventText(m, status, data, text);
  return text;
}

void AppendEventText(const Module& m, std::string_view status, std::string_view data,
                     std::string& text) {
  if (m.props.DateStampCol) (text += m.StatusDate) += kTab;
  if (m.props.TimeStampCol) (text += m.StatusTime) += kTab;
  if (m.props.PCDStatusCol) (text += status) += kTab;
  text += data;
}

// One dash cell for each data column after the first (`firstToo` adds one for the first).
std::string DashFiller(const Module& m, bool firstToo) {
  std::string filler;
  if (firstToo) filler += kDashes;
  for (int k = 3; k <= m.grid.ColumnCount() - 3; ++k)
    (filler += kTab) += kDashes;
  return filler;
}

void AddMarkerRow(Module& m, const std::string& status, const std::string& filler,
                  HistoryRowKind kind, int64_t missed) {
  m.grid.AddItem(std::to_string(m.walk.RecordCount) + kTab + m.StatusDate + kTab + m.StatusTime +
                 kTab + status + kTab + filler);
  m.events.OutputLine(EventText(m, status, filler));
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

}  // namespace

void AddRecordRow(Module& m, std::string_view displayLine, std::string_view rawLine,
                  std::string_view commentLine) {
  if (!displayLine.empty() && displayLine.front() == kTab) displayLine.remove_prefix(1);
  // Record rows come at full rate: their texts are built in buffers kept by the module.
  std::string& event = m.decodeScratch.eventText;
  event.clear();
  AppendEventText(m, m.PCDStatusText, displayLine, event);
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

  std::string& row = m.decodeScratch.rowText;
  row.clear();
  char number[16];
  row.append(number, std::to_chars(number, number + sizeof number, m.walk.RecordCount).ptr);
  (((((row += kTab) += m.StatusDate) += kTab) += m.StatusTime) += kTab) += m.PCDStatusText;
  (row += kTab) += displayLine;
  (row += kTab) += rawLine;
  (row += kTab) += commentLine;
  m.grid.AddItem(row);
  AnnounceRecordRow(m, displayLine);

  if (m.GraphShown) RefreshGraph(m);
  ScrollToNewest(m);
}

void AddMissRow(Module& m, int64_t missed) {
  AddMarkerRow(m, "Miss " + std::to_string(missed), DashFiller(m, false), HistoryRowKind::Miss,
               missed);
}

void AddRestartRow(Module& m) {
  AddMarkerRow(m, "Restart", DashFiller(m, true), HistoryRowKind::Restart, 0);
}

}  // namespace vantrel
