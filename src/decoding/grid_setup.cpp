#include "decoding/grid_setup.h"

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

bool BuildGrid(Module& m) {
  TableModel& grid = m.grid;
  try {
    grid.SetFontName(m.props.GridFontName);
    grid.SetFontSize(Val(m.props.GridFontSize));
    m.walk.RecordCount = 0;
    m.surface.recordCount.caption = "0";
    m.surface.rowCount.caption = "0";
    m.SurfaceChanged();

    int defined = 0;
    for (const ColumnDef& column : m.description.Columns)
      defined += column.Defined ? 1 : 0;

    grid.SetRowCount(1);
    grid.ClearCells();
    grid.SetColumnCount(defined + kFirstTraceColumn);
    grid.SetRowCount(2);
    SetHeader(grid, 0, "", 500);
    SetHeader(grid, 1, "PC Date", m.props.DateStampCol ? kStampColumnWidth : 0);
    SetHeader(grid, 2, "PC Time", m.props.TimeStampCol ? kStampColumnWidth : 0);
    SetHeader(grid, 3, "PCD", m.props.PCDStatusCol ? kStampColumnWidth : 0);
    int gridColumn = 4;
    for (int number = 0; number < static_cast<int>(m.description.Columns.size()); ++number) {
      const ColumnDef& column = m.description.Columns[static_cast<size_t>(number)];
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

void ShowTitle(Module& m, bool simulated) {
  if (simulated) {
    m.surface.title = {"Vantrel running with congured buffer simulation", kColorRed};
  } else {
    m.surface.title = {"Vantrel for : " + m.description.Title + "      version " +
                           std::to_string(m.buffer.HeaderVersion),
                       kColorBlack};
  }
  m.SurfaceChanged();
}

void ShowInfo(Module& m) {
  if (!m.buffer.HeaderKey.empty()) {
    if (!m.description.InfoText.empty()) {
      m.services.prompts.ShowMessage("Info section :\r\r" + m.description.InfoText,
                                     m.description.DescriptionFile, MessageIcon::Information,
                                     MessageButtons::Ok);
    }
    return;
  }
  m.services.prompts.ShowMessage("No info avalaible.", "Vantrel", MessageIcon::Information,
                                 MessageButtons::Ok);
}

}  // namespace vantrel
