#pragma once
// Emptying the table: counters back to 0 and the empty table rebuilt, keeping the widths
// and selections the user gave its columns.

#include "control/module.h"

namespace vantrel {

void ClearTable(Module& m);

}  // namespace vantrel
