#pragma once
// The record table emptied and rebuilt from the trace description.

#include "control/module.h"

namespace vantrel {

// Builds the empty table from the description, the record counter back to 0; false when
// building failed part-way.
bool BuildGrid(Module& m);
// Empties the table, keeping its column widths and selections.
void ClearTable(Module& m);

}  // namespace vantrel
