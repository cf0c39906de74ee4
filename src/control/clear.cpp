#include "control/clear.h"

#include "decoding/grid_setup.h"
#include "platform/runtime_error.h"

namespace vantrel {

void ClearTable(Module& m) {
  m.surface.recordCount = {"0", kColorBlack};
  m.surface.rowCount = {"0", kColorBlack};
  m.walk.RecordCount = 0;
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
