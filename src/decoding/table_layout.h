#pragma once
// The empty record table built from the trace description: record number, PC date, PC time,
// controller status, then one column per defined trace column.

#include <array>
#include <cstdint>

#include <string>

#include "description/trace_description.h"
#include "vantrel/table_model.h"

namespace vantrel {

inline constexpr int32_t kStampColumnWidth = 1100;

// The table's font and which stamp columns are shown.
struct TableLayout {
  const std::string& fontName;
  const std::string& fontSize;
  bool dateStampCol = false;
  bool timeStampCol = false;
  bool pcdStatusCol = false;
};

// Builds the empty table; false when building failed part-way.
bool BuildTable(TableModel& grid, const TraceDescription& description, const TableLayout& layout);

// Column widths and header selections kept across a rebuild of the table.
struct SavedGridColumns {
  int count = 0;  // grid columns saved: 1 .. count
  std::array<int16_t, 128> width{};
  std::array<bool, 128> selected{};
};
SavedGridColumns SaveGridColumns(const TableModel& grid);
void RestoreGridColumns(TableModel& grid, const SavedGridColumns& saved);

}  // namespace vantrel
