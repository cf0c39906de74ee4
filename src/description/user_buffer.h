#pragma once
// The user buffer file (.vtlr): a compact description of a buffer that a user program lays
// out itself, one comma-separated line per column; in simulation it also sets the simulated
// ring's size and record interval.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "description/trace_description.h"

namespace vantrel {

// The most registers a simulated ring may hold: the largest buffer length a controller can
// announce (a data block).
inline constexpr int64_t kLargestSimulatedRing = 16383;

struct UserBufferSimulation {
  int32_t intervalMs = 0;
  int32_t recordCount = 0;
};

// True when `userFile` ends in ".vtlr" as far as the control checks it.
bool HasUserBufferExtension(std::string_view userFile);

// Loads `userFile` for the buffer whose key is `headerKey` (the file's HeaderKey must equal
// it exactly). In simulation, `simulationOut` receives the record interval and the number of
// simulated records; the caller sizes the simulated ring and sets its timer. False with
// `errMsg` set on failure; the fields read before the failure keep their new values.
bool LoadUserBuffer(TraceDescription& d, std::string_view userFile, std::string_view headerKey,
                    bool simulation, std::optional<UserBufferSimulation>& simulationOut,
                    std::string& errMsg);

}  // namespace vantrel
