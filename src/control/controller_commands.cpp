// The commands a "VTL2" buffer's command word carries: clear the table, export it, shut the
// host down.

#include "acquisition/controller_status.h"
#include "control/clear.h"
#include "control/export_control.h"
#include "control/module.h"

namespace vantrel {
namespace {

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

void Control::Module::CommandChanged(int32_t command) {
  try {
    RunCommand(*this, command);
  } catch (...) {
    CommandedExport = false;  // a failed command ends the check without a message
  }
}

}  // namespace vantrel
