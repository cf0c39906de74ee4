#include "decoding/row_limit.h"

#include <string>

namespace vantrel {

void TrimRows(Module& m) {
  if (m.grid.DataRowCount() < m.props.MaxRows) {
    m.surface.rowCount.foreColor = kColorBlack;
    m.SurfaceChanged();
    return;
  }
  while (m.grid.DataRowCount() > m.props.MaxRows && m.grid.DataRowCount() > 0) {
    m.grid.RemoveRow(1);
  }
  m.surface.rowCount = {std::to_string(m.props.MaxRows), kColorRed};
  m.SurfaceChanged();
}

}  // namespace vantrel
