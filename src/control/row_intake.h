#pragma once
// Rows coming into the table: decoded records, controller status changes and the marker
// rows of lost records, with the counters, the row limit (or the automatic export that
// empties a full table) and the graph kept up to date.

#include <cstdint>

#include "control/module.h"

namespace vantrel {

// Appends a row of trace cells stamped with the last record's PC time: a decoded record, or
// (kind Status) a controller status change with empty cells. The row takes the cells over;
// `traceCells` is left with empty buffers to reuse.
void AddRecordRow(Module& m, CellRow& traceCells, RowKind kind = RowKind::Record);
// Acts on a new PCDStatus value: a new text and, once the buffer is known, a status row.
void ChangePCDStatus(Module& m);
// Trims the table to MaxRows data rows and colours the row counter: red with MaxRows once
// the limit is reached, black below it.
void TrimRows(Module& m);

}  // namespace vantrel
