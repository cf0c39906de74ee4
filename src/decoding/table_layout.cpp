#include "decoding/table_layout.h"

#include <string>

#include "platform/numbers.h"
#include "platform/runtime_error.h"

namespace vantrel {
namespace {

constexpr int16_t kAlignLeftCenter = 1;

void SetHeader(TableModel& grid, int column, const char* caption, int32_t width) {
  grid.SetText(0, column, caption);
  grid.SetColumnWidth(column, width);
  grid.SetColumnAlignment(column, kAlignLeftCenter);
}

}  // namespace

bool BuildTable(TableModel& grid, const TraceDescription& description, const TableLayout& layout) {
  try {
    grid.SetFontName(layout.fontName);
    grid.SetFontSize(Val(layout.fontSize));

    int defined = 0;
    for (const ColumnDef& column : description.Columns)
      defined += column.Defined ? 1 : 0;

    grid.SetRowCount(1);
    grid.ClearCells();
    grid.SetColumnCount(defined + kFirstTraceColumn);
    grid.SetRowCount(2);
    SetHeader(grid, 0, "", 500);
    SetHeader(grid, 1, "PC Date", layout.dateStampCol ? kStampColumnWidth : 0);
    SetHeader(grid, 2, "PC Time", layout.timeStampCol ? kStampColumnWidth : 0);
    SetHeader(grid, 3, "PCD", layout.pcdStatusCol ? kStampColumnWidth : 0);
    int gridColumn = 4;
    for (int number = 0; number < static_cast<int>(description.Columns.size()); ++number) {
      const ColumnDef& column = description.Columns[static_cast<size_t>(number)];
      if (!column.Defined) continue;
      grid.SetColumnWidth(gridColumn, column.Width);
      grid.SetColumnAlignment(gridColumn, kAlignLeftCenter);
      grid.SetColumnData(gridColumn, number);
      grid.SetText(0, gridColumn, column.Caption);
      ++gridColumn;
    }
    grid.SetRowCount(1);
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

SavedGridColumns SaveGridColumns(const TableModel& grid) {
  SavedGridColumns saved;
  saved.count = std::min(grid.ColumnCount() - 1, 127);
  for (int i = 1; i <= saved.count; ++i) {
    const int32_t width = grid.ColumnWidth(i);
    if (width > 32767 || width < -32768) throw RuntimeError::Overflow();
    saved.width[static_cast<size_t>(i)] = static_cast<int16_t>(width);
    saved.selected[static_cast<size_t>(i)] = grid.Selected(i);
  }
  return saved;
}

void RestoreGridColumns(TableModel& grid, const SavedGridColumns& saved) {
  const int count = std::min(grid.ColumnCount() - 1, saved.count);
  for (int i = 1; i <= count; ++i) {
    grid.SetColumnWidth(i, saved.width[static_cast<size_t>(i)]);
    if (saved.selected[static_cast<size_t>(i)]) grid.SetSelected(i, true);
  }
}

}  // namespace vantrel
