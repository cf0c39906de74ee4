#pragma once
// String columns take as many registers as their length needs: after a description is
// loaded, their lengths are resolved (from the header's string length table where the
// description asks for it) and the registers of the columns after them move along.

#include <cstdint>
#include <span>

#include "description/trace_description.h"

namespace vantrel {

void ResolveStringColumns(TraceDescription& description, std::span<const int32_t> header);

}  // namespace vantrel
