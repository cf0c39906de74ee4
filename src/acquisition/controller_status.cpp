#include "acquisition/controller_status.h"

#include "control/clear.h"
#include "decoding/row_bookkeeping.h"
#include "output/output_steps.h"

namespace vantrel {
namespace {

constexpr int32_t kCommandClear = 1;
constexpr int32_t kCommandExport = 8;
constexpr int32_t kCommandShutDown = 9;
constexpr int kShutDownNoticeMs = 3000;

void RunCommand(Module& m, int32_t command) {
  switch (command) {
    case kCommandClear:
      ClearTable(m);
      break;
    case kCommandExport:
      m.CommandedExport = true;
      ExportFromButton(m);
      m.CommandedExport = false;
      break;
    case kCommandShutDown:
      m.services.prompts.ShowShutDownNotice("Form1", "Vantrel Application will shut down...",
                                            "Shutdown Command", kShutDownNoticeMs);
      m.events.PCDCmd(static_cast<int16_t>(kCommandShutDown));
      break;
    default:
      break;
  }
}

}  // namespace

std::string PCDStatusTextOf(int32_t status) {
  switch (status) {
    case 0:
      return "Offline";
    case 1:
      return "Disconnect";
    case 2:
      return "Run";
    case 3:
      return "Stop";
    case 4:
      return "Halt";
    case 5:
      return "Conditional Run";
    case 7:
      return "Conditional Stop";
    case 8:
      return "Trace";
    default:
      return "Bad Status";
  }
}

void ChangePCDStatus(Module& m) {
  const int32_t status = m.props.PCDStatus;
  if (status == m.LastPCDStatus) return;
  m.LastPCDStatus = status;
  m.PCDStatusText = PCDStatusTextOf(status);
  if (m.buffer.ReadState < kStateHeader) return;
  SetRowStamp(m, m.services.clock.Now());
  CellRow emptyCells;
  for (const ColumnDef& column : m.description.Columns) {
    if (column.Defined) emptyCells.Append({}, {}, 0, {}, {});
  }
  AddRecordRow(m, emptyCells, RowKind::Status);
}

void CheckCommand(Module& m) {
  if (m.buffer.CommandWord == m.buffer.LastCommand) return;
  m.buffer.LastCommand = m.buffer.CommandWord;
  try {
    RunCommand(m, m.buffer.CommandWord);
  } catch (...) {
    m.CommandedExport = false;  // a failed command ends the check without a message
  }
}

}  // namespace vantrel
