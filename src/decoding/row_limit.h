#pragma once
// The table's row limit: the oldest rows go when there are more than MaxRows.

#include "control/module.h"

namespace vantrel {

// Trims the table to MaxRows data rows and colours the row counter: red with MaxRows once
// the limit is reached, black below it.
void TrimRows(Module& m);

}  // namespace vantrel
