#include "vantrel/hosts/modbus/modbus_link.h"
#include "controller_links.h"

namespace vantrel::cli {

std::unique_ptr<hosts::ControllerLink> OpenModbusLink(const std::string& address,
                                                      const hosts::ModbusOptions& options,
                                                      PollEventLoop& loop,
                                                      hosts::LinkHandlers handlers,
                                                      std::string& error) {
  hosts::modbus::ModbusLinkOptions link;
  link.unit = options.unit;
  link.wordOrder = options.wordOrder;
  link.dataBlocks = options.dataBlocks;
  link.registerOffset = options.registerOffset;
  return hosts::modbus::OpenModbusLink(
      address, link, [&loop](std::function<void()> task) { loop.Post(std::move(task)); },
      std::move(handlers), error);
}

}  // namespace vantrel::cli
