#pragma once
// The empty record table built from the trace description: record number, PC date, PC time,
// controller status, then one column per defined trace column. Also the title line and the
// information button.

#include <array>
#include <cstdint>

#include "control/module.h"

namespace vantrel {

inline constexpr int32_t kStampColumnWidth = 1100;

// Builds the empty table; false when building failed part-way.
bool BuildGrid(Module& m);

// Column widths and header selections kept across a rebuild of the table.
struct SavedGridColumns {
  int count = 0;  // grid columns saved: 1 .. count
  std::array<int16_t, 128> width{};
  std::array<bool, 128> selected{};
};
SavedGridColumns SaveGridColumns(const TableModel& grid);
void RestoreGridColumns(TableModel& grid, const SavedGridColumns& saved);

// Writes the title line: the description's title and the buffer version, or the notice of
// a simulated buffer.
void ShowTitle(Module& m, bool simulated);

// The information button: the description's information text, or "No info avalaible.".
void ShowInfo(Module& m);

}  // namespace vantrel
