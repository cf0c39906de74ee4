#pragma once
// The controller's run status that the host reports (PCDStatus), shown in the status column
// and marked by a row at each change; and the command word a "VTL2" buffer carries.

#include <cstdint>
#include <string>

#include "control/module.h"

namespace vantrel {

// "Offline", "Run", ... or "Bad Status".
std::string PCDStatusTextOf(int32_t status);
// Acts on a new PCDStatus value: a new text and, once the buffer is known, a status row.
void ChangePCDStatus(Module& m);
// Carries out a command word that differs from the last one seen.
void CheckCommand(Module& m);

}  // namespace vantrel
