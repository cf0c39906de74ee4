#include "control/graph_control.h"

#include "control/run_control.h"

namespace vantrel {

void ClickGraphButton(Module& m) {
  if (m.graph.Shown()) {
    ShowGridView(m);
    return;
  }
  if (!SelectTraceColumnsForGraph(m.grid)) {
    m.services.prompts.ShowMessage(
        "No data columns selected for the graph !\r\rDouble-click on the data column header to "
        "select it.",
        "Show graph", MessageIcon::Information, MessageButtons::Ok);
    return;
  }
  m.surface.graphButton.caption = "Grid";
  m.graph.SetShown(true);
  m.surface.gridVisible = false;
  m.surface.chartVisible = true;
  m.grid.SetRedraw(false);
  m.SurfaceChanged();
  SetupGraph(m);
}

void SetupGraph(Module& m) {
  m.graph.Setup(m.grid, m.props.MaxGraph);
}

void RefreshGraph(Module& m) {
  m.graph.Refresh(m.grid, m.props.MaxGraph);
}

}  // namespace vantrel
