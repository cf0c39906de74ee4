#pragma once
// The reading cycle: what the control asks its host for in each reading state, and how an
// answer (a DataBlock) moves the state on.

#include <cstdint>
#include <span>

#include "control/module.h"

namespace vantrel {

// Issues the read request of the current state for `count` words.
void RequestRead(Module& m, int16_t count);
// Changes the reading state, shows its status text and raises Status.
void SetReadState(Module& m, int16_t state);
// Consumes the host's answer according to the reading state.
void TakeDataBlock(Module& m, std::span<const int32_t> block);
// The periodic read timer.
void OnReadTimer(Module& m);
// Walk counters, record number and records to read back to 0.
void ResetWalkCounters(Module& m);

}  // namespace vantrel
