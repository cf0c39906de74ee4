#include "controller_choice.h"

#include "vantrel/hosts/program_file.h"
#include "vantrel/hosts/pump_station.h"

namespace vantrel::viewer {
namespace {

std::optional<OpenedController> OpenEmbedded(const ViewerOptions& o, TimerFactory& timers,
                                             const Clock& clock, hosts::PostToHost post,
                                             hosts::LinkHandlers handlers, std::string& error) {
  hosts::ProgramFile program{hosts::PumpStationProgram(), 100};
  if (o.programFile) {
    auto file = hosts::ReadProgramFile(*o.programFile, error);
    if (!file) return std::nullopt;
    program = std::move(*file);
  }
  if (o.recordIntervalMs) program.recordIntervalMs = *o.recordIntervalMs;
  OpenedController opened;
  opened.defaultStartRegister = program.program.startRegister;
  auto embedded = std::make_unique<hosts::EmbeddedController>(
      timers, clock, std::move(post), std::move(program), std::move(handlers));
  opened.embedded = embedded.get();
  opened.link = std::move(embedded);
  return opened;
}

}  // namespace

std::optional<OpenedController> OpenController(const ViewerOptions& options, TimerFactory& timers,
                                               const Clock& clock, hosts::PostToHost post,
                                               hosts::LinkHandlers handlers, std::string& error) {
  if (options.controller == "sim") {
    return OpenEmbedded(options, timers, clock, std::move(post), std::move(handlers), error);
  }
  // A network transport goes here: its client reads on a worker thread and answers through
  // `post` and `handlers`, like the virtual controller, and sets runningAtStart to false.
  if (options.controller.rfind("modbus://", 0) == 0) {
    error = "the viewer cannot reach Modbus TCP controllers yet; use `vantrel run --controller " +
            options.controller + "`";
    return std::nullopt;
  }
  error = "unknown controller '" + options.controller + "' (use sim)";
  return std::nullopt;
}

}  // namespace vantrel::viewer
