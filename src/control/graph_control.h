#pragma once
// The graph button and the graph kept up to date with the table.

#include "control/module.h"

namespace vantrel {

// The graph button: switches between the table and the graph.
void ClickGraphButton(Module& m);
// Rebuilds the series from the selected columns, then fills the points.
void SetupGraph(Module& m);
// Refills the graph's points from the newest rows of the table.
void RefreshGraph(Module& m);

}  // namespace vantrel
