#ifdef VANTREL_WITH_MODBUS
#include "vantrel/hosts/modbus/modbus_link.h"
#endif
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
  // A network transport reads on a worker thread of its own and answers through `post`: the
  // GUI never waits for the network.
  if (options.controller.rfind("modbus://", 0) == 0) {
#ifdef VANTREL_WITH_MODBUS
    hosts::modbus::ModbusLinkOptions link;
    link.unit = options.modbus.unit;
    link.wordOrder = options.modbus.wordOrder;
    link.dataBlocks = options.modbus.dataBlocks;
    link.registerOffset = options.modbus.registerOffset;
    OpenedController opened;
    opened.link = hosts::modbus::OpenModbusLink(options.controller, link, std::move(post),
                                                std::move(handlers), error);
    if (!opened.link) return std::nullopt;
    opened.runningAtStart = false;
    return opened;
#else
    error = "this viewer was built without Modbus TCP (VANTREL_BUILD_MODBUS=OFF)";
    return std::nullopt;
#endif
  }
  error = "unknown controller '" + options.controller + "' (use sim or modbus://HOST:PORT)";
  return std::nullopt;
}

}  // namespace vantrel::viewer
