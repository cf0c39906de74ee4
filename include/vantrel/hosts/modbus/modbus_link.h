#pragma once
// A controller reached over Modbus TCP as a host's link: the client reads on its worker
// thread and answers through the handlers on the host's thread (see modbus_client.h).

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vantrel/hosts/controller_link.h"

namespace vantrel::hosts::modbus {

struct ModbusLinkOptions {
  int unit = 1;
  std::string wordOrder = "hi-lo";      // or "lo-hi"
  std::vector<std::string> dataBlocks;  // "d=ADDR"
  int32_t registerOffset = 0;
};

// The link to "modbus://HOST:PORT"; nullptr with `error` set when the address or the options
// are wrong.
std::unique_ptr<ControllerLink> OpenModbusLink(std::string_view address,
                                               const ModbusLinkOptions& options, PostToHost post,
                                               LinkHandlers handlers, std::string& error);

}  // namespace vantrel::hosts::modbus
