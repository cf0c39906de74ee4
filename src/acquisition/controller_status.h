#pragma once
// The controller's run status that the host reports (PCDStatus), as the status column shows
// it, and the commands a "VTL2" buffer's command word carries.

#include <cstdint>
#include <string>

namespace vantrel {

inline constexpr int32_t kCommandClear = 1;
inline constexpr int32_t kCommandExport = 8;
inline constexpr int32_t kCommandShutDown = 9;

// "Offline", "Run", ... or "Bad Status".
std::string PCDStatusTextOf(int32_t status);

}  // namespace vantrel
