#include "output/graph_view.h"

#include <algorithm>

#include "platform/runtime_error.h"

namespace vantrel {
namespace {

constexpr int kSeriesLineWidth = 20;

int LastDataColumn(const TableModel& table) {
  return table.ColumnCount() - 1;
}

int LabelStep(int32_t points) {
  if (points <= 20) return 1;
  if (points <= 100) return 5;
  if (points <= 500) return 10;
  return 20;
}

}  // namespace

bool SelectTraceColumnsForGraph(TableModel& table) {
  const int last = LastDataColumn(table);
  bool any = false;
  for (int c = kFirstTraceColumn; c <= last; ++c)
    any = any || table.Selected(c);
  if (!any) {
    for (int c = kFirstTraceColumn; c <= last; ++c)
      table.SetSelected(c, true);
  }
  bool found = false;
  for (int c = kFirstTraceColumn; c <= last; ++c)
    found = found || table.Selected(c);
  return found;
}

void GraphView::Setup(const TableModel& table, int32_t points) {
  columns_.clear();
  for (int c = kFirstTraceColumn; c <= LastDataColumn(table); ++c) {
    if (table.Selected(c)) columns_.emplace_back(c, std::string(table.Text(0, c)));
  }
  if (chart_.SeriesCount() > 0) chart_.RemoveAllSeries();
  if (chart_.PointCount() > 0) chart_.RemoveAllPoints();
  chart_.SetSeriesCount(static_cast<int>(columns_.size()));
  for (int s = 1; s <= chart_.SeriesCount(); ++s) {
    chart_.SetSeriesLabel(s, columns_[static_cast<size_t>(s - 1)].second);
    chart_.SetSeriesLineWidth(s, kSeriesLineWidth);
  }
  chart_.SetValueAxisGridLineWidth(1);
  chart_.SetPointCount(points);
  Refresh(table, points);
}

void GraphView::Refresh(const TableModel& table, int32_t points) {
  chart_.SuspendRepaint();
  // A failure ends the fill where it happened and leaves repainting suspended.
  try {
    const int rows = table.RowCount();
    const int step = LabelStep(points);
    const int start = std::max(rows - 1 - points, 0);
    for (int i = 1; i <= points && i <= chart_.PointCount(); ++i) {
      const bool labelled = (start + i) % step == 0 && i < rows;
      chart_.SetPointLabel(i, labelled ? std::string(table.Text(start + i, 0)) : std::string());
    }
    const int first = std::max(rows - points, 1);
    for (int s = 1; s <= static_cast<int>(columns_.size()); ++s) {
      const int column = columns_[static_cast<size_t>(s - 1)].first;
      for (int r = first; r <= rows - 1; ++r) {
        chart_.SetValue(s, r - first + 1, table.Row(r).Plot(column));
      }
    }
  } catch (const RuntimeError&) {
    return;
  }
  chart_.ResumeRepaint();
}

void HeaderSelection::Press(const TableModel& table, int32_t y) {
  pressOnHeader_ = y < table.RowHeight() && table.RowCount() > 1;
}

void HeaderSelection::DoubleClick(TableModel& table, int column) {
  if (!pressOnHeader_ || column < 1 || column > LastDataColumn(table)) return;
  pressOnHeader_ = false;
  table.SetSelected(column, !table.Selected(column));
}

}  // namespace vantrel
