#pragma once
// Simulation: without a controller, a timer writes records into a ring in memory and every
// read request is answered from it at once.

#include <cstdint>

#include "control/module.h"

namespace vantrel {

// Switches simulation on: a fresh simulated header, the simulation timer started.
void StartSimulation(Module& m);
// Sizes the simulated ring and sets the simulation period, from the user buffer file.
void PrepareSimulation(Module& m, int32_t intervalMs, int32_t recordCount);
// One tick of the simulated controller program: the next record written into the ring.
void OnSimulationTimer(Module& m);

}  // namespace vantrel
