#pragma once
// Adding rows to the record table: record rows with their stamps and counters, the row
// limit, keeping the newest row in view, and the "Miss " and "Restart" marker rows. Every
// row is also offered to the host as text through OutputLine.

#include <cstdint>
#include <span>

#include "control/module.h"

namespace vantrel {

// Decodes the record starting at `registers[first]` and appends it as a row. False when the
// record could not be decoded (the failure is shown in a message box; no row is added).
bool DecodeRecord(Module& m, std::span<const int32_t> registers, size_t first);

// Appends a row of trace cells stamped with the last record's PC time: a decoded record, or
// (kind Status) a controller status change with empty cells. The row takes the cells over;
// `traceCells` is left with empty buffers to reuse.
void AddRecordRow(Module& m, CellRow& traceCells, RowKind kind = RowKind::Record);
// Marks records lost because the ring overran between two polls.
void AddMissRow(Module& m, int64_t missed);
// Marks the controller's record counter going backwards.
void AddRestartRow(Module& m);

// Stamps the rows that follow with `now`.
void SetRowStamp(Module& m, const DateTime& now);

}  // namespace vantrel
