#pragma once
// The controller `vantrel run` reads: the embedded virtual controller, or one reached over
// Modbus TCP.

#include <memory>
#include <string>

#include "host_options.h"
#include "vantrel/clock.h"
#include "vantrel/hosts/controller_link.h"
#include "vantrel/hosts/embedded_controller.h"
#include "vantrel/poll_event_loop.h"

namespace vantrel::cli {

// "modbus://HOST:PORT" through a Modbus TCP client; nullptr with `error` set when the text
// or the mapping options are wrong or the program was built without Modbus.
std::unique_ptr<hosts::ControllerLink> OpenModbusLink(const std::string& address,
                                                      const hosts::ModbusOptions& options,
                                                      PollEventLoop& loop,
                                                      hosts::LinkHandlers handlers,
                                                      std::string& error);

}  // namespace vantrel::cli
