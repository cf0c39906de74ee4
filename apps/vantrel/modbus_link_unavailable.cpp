// Built when libmodbus is left out: the Modbus controller choice says so.
#include "controller_links.h"

namespace vantrel::cli {

std::unique_ptr<hosts::ControllerLink> OpenModbusLink(const std::string&,
                                                      const hosts::ModbusOptions&, PollEventLoop&,
                                                      hosts::LinkHandlers, std::string& error) {
  error = "this vantrel was built without Modbus TCP (VANTREL_BUILD_MODBUS=OFF)";
  return nullptr;
}

}  // namespace vantrel::cli
