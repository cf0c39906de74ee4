#pragma once
// Adding rows to the record table: record rows with their stamps and counters, the row
// limit, keeping the newest row in view, and the "Miss " and "Restart" marker rows. Every
// row is also offered to the host as text through OutputLine.

#include <cstdint>
#include <string_view>

#include "control/module.h"

namespace vantrel {

// Appends a decoded record (or a status-change row with empty data fields).
void AddRecordRow(Module& m, std::string_view displayLine, std::string_view rawLine,
                  std::string_view commentLine);
// Marks records lost because the ring overran between two polls.
void AddMissRow(Module& m, int64_t missed);
// Marks the controller's record counter going backwards.
void AddRestartRow(Module& m);

}  // namespace vantrel
