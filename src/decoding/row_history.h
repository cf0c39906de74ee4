#pragma once
// Hands the rows the table receives, and the descriptions loaded, to the host's row sinks.

#include <cstdint>
#include <string_view>

#include "control/module.h"

namespace vantrel {

void AnnounceDescription(Module& m);
void AnnounceRecordRow(Module& m, RowKind kind, const CellRow& traceCells);
void AnnounceMarkerRow(Module& m, HistoryRowKind kind, std::string_view status,
                       std::string_view filler, int64_t missed);

}  // namespace vantrel
