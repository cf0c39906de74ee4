#include "control/row_intake.h"

#include <string>

#include "acquisition/controller_status.h"
#include "control/export_control.h"
#include "control/graph_control.h"

namespace vantrel {
namespace {

void ReportFailedRecord(Module& m, const std::string& message) {
  m.services.prompts.ShowMessage(message, "Vantrel", MessageIcon::Exclamation, MessageButtons::Ok);
}

// Makes room for one more row: below the limit the counter shows the new count; at it, the
// automatic export empties the table, or else the oldest row goes.
void MakeRoomForRow(Module& m) {
  const int rows = m.grid.DataRowCount();
  if (rows < m.props.MaxRows) {
    m.surface.rowCount = {std::to_string(rows + 1), kColorBlack};
  } else if (m.props.AutoExport) {
    ExportFromButton(m);
  } else if (rows > 0) {
    m.grid.RemoveRow(1);
    m.surface.rowCount = {std::to_string(m.props.MaxRows), kColorRed};
  }
}

}  // namespace

bool Control::Module::DecodeRecord(std::span<const int32_t> registers, size_t first) {
  rows.StampAt(services.clock.Now());
  DecodedRecord& record = decoded;
  const bool ok = decoder.Decode(registers, first, decoding, record);
  for (const std::string& error : record.readerErrors)
    RaiseError(kErrFieldReader, error);
  if (!ok) {
    ReportFailedRecord(*this, record.failureMessage);
    return false;
  }
  try {
    AddRecordRow(*this, record.cells);
  } catch (const RuntimeError& e) {
    if (record.passesOverFailures) return true;
    ReportFailedRecord(*this, e.Description());
    return false;
  }
  return true;
}

void AddRecordRow(Module& m, CellRow& traceCells, RowKind kind) {
  m.rows.OutputRecordLine(traceCells, m.PCDStatusText, m.Stamps());
  if (!m.rows.CountRecord()) m.surface.recordCount.foreColor = kColorRed;
  m.surface.recordCount.caption = std::to_string(m.rows.RecordCount());
  MakeRoomForRow(m);
  m.SurfaceChanged();
  m.rows.AppendRecord(traceCells, kind, m.PCDStatusText);
  if (m.graph.Shown()) RefreshGraph(m);
  m.rows.ScrollToNewest();
}

void Control::Module::RecordsMissed(int64_t count) {
  rows.AppendMarker(RowKind::Miss, "Miss " + std::to_string(count), count, Stamps());
}

void Control::Module::CounterRestarted() {
  rows.AppendMarker(RowKind::Restart, "Restart", 0, Stamps());
}

void ChangePCDStatus(Module& m) {
  const int32_t status = m.props.PCDStatus;
  if (status == m.LastPCDStatus) return;
  m.LastPCDStatus = status;
  m.PCDStatusText = PCDStatusTextOf(status);
  if (m.cycle.State() < kStateHeader) return;
  m.rows.StampAt(m.services.clock.Now());
  CellRow emptyCells;
  for (const ColumnDef& column : m.description.Columns) {
    if (column.Defined) emptyCells.Append({}, {}, 0, {}, {});
  }
  AddRecordRow(m, emptyCells, RowKind::Status);
}

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
