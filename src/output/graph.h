#pragma once
// The graph view: the newest MaxGraph rows of the selected table columns as lines. Columns
// are selected by a double-click on their header, which turns the header yellow; the same
// selection chooses the columns an export writes.

#include <cstdint>

#include "control/module.h"

namespace vantrel {

// The graph button: switches between the table and the graph.
void ClickGraphButton(Module& m);
// Rebuilds the series from the selected columns, then fills the points.
void SetupGraph(Module& m);
// A mouse press on the table at `y` twips from its top: remembers whether it hit the header.
void PressGrid(Module& m, int32_t y);
// A double-click on a cell of `column`: toggles the column's selection after a header press.
void DoubleClickGrid(Module& m, int column);

}  // namespace vantrel
