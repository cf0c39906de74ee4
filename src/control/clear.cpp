#include "control/clear.h"

#include "decoding/table_layout.h"
#include "platform/runtime_error.h"

namespace vantrel {

bool BuildGrid(Module& m) {
  m.rows.ResetRecordCount();
  m.surface.recordCount.caption = "0";
  m.surface.rowCount.caption = "0";
  m.SurfaceChanged();
  const PropertyFields& p = m.props;
  return BuildTable(
      m.grid, m.description,
      {p.GridFontName, p.GridFontSize, p.DateStampCol, p.TimeStampCol, p.PCDStatusCol});
}

void ClearTable(Module& m) {
  m.surface.recordCount = {"0", kColorBlack};
  m.surface.rowCount = {"0", kColorBlack};
  m.rows.ResetRecordCount();
  m.SurfaceChanged();
  SavedGridColumns saved;
  bool keepColumns = true;
  try {
    saved = SaveGridColumns(m.grid);
  } catch (const RuntimeError&) {
    keepColumns = false;  // a width too wide to keep: the rebuilt widths stand
  }
  m.grid.SetRowCount(1);
  m.grid.ClearCells();
  BuildGrid(m);
  if (keepColumns) RestoreGridColumns(m.grid, saved);
}

}  // namespace vantrel
