#pragma once
// What the rest of the control asks of the output side: exporting the table as the export
// button does, and redrawing the graph from the table.

#include "control/module.h"

namespace vantrel {

// The export button: exports the table when it holds at least one data row.
void ExportFromButton(Module& m);
// Refills the graph's points from the newest rows of the table.
void RefreshGraph(Module& m);

}  // namespace vantrel
