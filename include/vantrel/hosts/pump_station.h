#pragma once
// The trace program of the bundled pump-station example (examples/PMP1_pumps.vtl): what the
// embedded virtual controller runs when no other controller is chosen.

#include "vantrel/hosts/trace_program.h"

namespace vantrel::hosts {

TraceProgramConfig PumpStationProgram();

}  // namespace vantrel::hosts
