#include "output/graph.h"

#include "control/run_control.h"
#include "output/output_steps.h"
#include "platform/runtime_error.h"

namespace vantrel {
namespace {

constexpr int kSeriesLineWidth = 20;

bool Selected(const TableModel& grid, int column) {
  return grid.Selected(column);
}

// The last trace column.
int LastDataColumn(const TableModel& grid) {
  return grid.ColumnCount() - 1;
}

int LabelStep(int32_t points) {
  if (points <= 20) return 1;
  if (points <= 100) return 5;
  if (points <= 500) return 10;
  return 20;
}

}  // namespace

void ClickGraphButton(Module& m) {
  if (m.GraphShown) {
    ShowGridView(m);
    return;
  }
  TableModel& grid = m.grid;
  const int last = LastDataColumn(grid);
  bool any = false;
  for (int c = 4; c <= last; ++c)
    any = any || Selected(grid, c);
  if (!any) {
    for (int c = 4; c <= last; ++c)
      grid.SetSelected(c, true);
  }
  bool found = false;
  for (int c = 4; c <= last; ++c)
    found = found || Selected(grid, c);
  if (!found) {
    m.services.prompts.ShowMessage(
        "No data columns selected for the graph !\r\rDouble-click on the data column header to "
        "select it.",
        "Show graph", MessageIcon::Information, MessageButtons::Ok);
    return;
  }
  m.surface.graphButton.caption = "Grid";
  m.GraphShown = true;
  m.surface.gridVisible = false;
  m.surface.chartVisible = true;
  m.grid.SetRedraw(false);
  m.SurfaceChanged();
  SetupGraph(m);
}

void SetupGraph(Module& m) {
  m.GraphColumns.clear();
  for (int c = kFirstTraceColumn; c <= LastDataColumn(m.grid); ++c) {
    if (Selected(m.grid, c)) m.GraphColumns.emplace_back(c, std::string(m.grid.Text(0, c)));
  }
  GraphModel& chart = m.chart;
  if (chart.SeriesCount() > 0) chart.RemoveAllSeries();
  if (chart.PointCount() > 0) chart.RemoveAllPoints();
  chart.SetSeriesCount(static_cast<int>(m.GraphColumns.size()));
  for (int s = 1; s <= chart.SeriesCount(); ++s) {
    chart.SetSeriesLabel(s, m.GraphColumns[static_cast<size_t>(s - 1)].second);
    chart.SetSeriesLineWidth(s, kSeriesLineWidth);
  }
  chart.SetValueAxisGridLineWidth(1);
  chart.SetPointCount(m.props.MaxGraph);
  RefreshGraph(m);
}

void RefreshGraph(Module& m) {
  GraphModel& chart = m.chart;
  const TableModel& grid = m.grid;
  chart.SuspendRepaint();
  // A failure ends the fill where it happened and leaves repainting suspended.
  try {
    const int32_t points = m.props.MaxGraph;
    const int rows = grid.RowCount();
    const int step = LabelStep(points);
    const int start = std::max(rows - 1 - points, 0);
    for (int i = 1; i <= points && i <= chart.PointCount(); ++i) {
      const bool labelled = (start + i) % step == 0 && i < rows;
      chart.SetPointLabel(i, labelled ? std::string(grid.Text(start + i, 0)) : std::string());
    }
    const int first = std::max(rows - points, 1);
    for (int s = 1; s <= static_cast<int>(m.GraphColumns.size()); ++s) {
      const int column = m.GraphColumns[static_cast<size_t>(s - 1)].first;
      for (int r = first; r <= rows - 1; ++r) {
        chart.SetValue(s, r - first + 1, grid.Row(r).Plot(column));
      }
    }
  } catch (const RuntimeError&) {
    return;
  }
  chart.ResumeRepaint();
}

void PressGrid(Module& m, int32_t y) {
  m.pressOnHeader = y < m.grid.RowHeight() && m.grid.RowCount() > 1;
}

void DoubleClickGrid(Module& m, int column) {
  if (!m.pressOnHeader || column < 1 || column > LastDataColumn(m.grid)) return;
  m.pressOnHeader = false;
  m.grid.SetSelected(column, !Selected(m.grid, column));
}

}  // namespace vantrel
