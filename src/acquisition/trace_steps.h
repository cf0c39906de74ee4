#pragma once
// The steps of the reading cycle that other subsystems carry out: finding and loading the
// trace description, walking the controller's ring, decoding records, and answering reads
// from the simulated buffer.

#include <cstdint>
#include <span>

#include "control/module.h"

namespace vantrel {

// Finds the description named by the buffer key (or the user buffer file) and loads it,
// then prepares the table. False with ErrMsg set when nothing usable was loaded.
bool LoadTraceDescription(Module& m);

// Compares the counter area with the previous poll; true when records are to be fetched.
bool WalkBufferCounters(Module& m, std::span<const int32_t> counterArea);

// Decodes the fetched records into rows; false with ErrType and ErrMsg set on a short load.
bool LoadRecords(Module& m, std::span<const int32_t> records);

// Answers a read request from the simulated buffer instead of the host.
void AnswerFromSimulation(Module& m, int16_t count);

}  // namespace vantrel
