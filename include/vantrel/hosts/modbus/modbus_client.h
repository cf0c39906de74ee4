#pragma once
// A Modbus TCP client for the control's host. libmodbus blocks, so the reads run on a worker
// thread of the client's own; answers and connection changes are handed to the host's
// thread through `post`, so that the control is only ever touched there.
//
// One request is served at a time; a new request replaces one still waiting, and the answer
// of a request that a newer one replaced is dropped. A failed read (connection lost, timeout,
// exception response) closes the link, reports the loss, and the same request is tried
// again after a back-off of 100 ms doubling to 2 s, over a fresh connection: libmodbus stays
// out of step after a timeout otherwise. "Connected" is reported when a read has succeeded,
// not when the connection opened.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vantrel/hosts/controller_link.h"
#include "vantrel/hosts/modbus/modbus_mapping.h"

namespace vantrel::hosts::modbus {

class ModbusClient {
 public:
  struct Callbacks {
    std::function<void(std::vector<int32_t>)> answer;
    std::function<void(bool connected)> connection;
    std::function<void(std::string)> error;  // a request that cannot be served at all
  };
  struct Timing {
    int responseTimeoutMs = 500;
    int firstRetryMs = 100;
    int longestRetryMs = 2000;
  };

  ModbusClient(Endpoint endpoint, int unit, ModbusMapping mapping, PostToHost post,
               Callbacks callbacks, Timing timing);
  ModbusClient(Endpoint endpoint, int unit, ModbusMapping mapping, PostToHost post,
               Callbacks callbacks)
      : ModbusClient(std::move(endpoint), unit, std::move(mapping), std::move(post),
                     std::move(callbacks), Timing{}) {}
  // Stops the worker; waits at most for the read under way (one response timeout).
  ~ModbusClient();
  ModbusClient(const ModbusClient&) = delete;
  ModbusClient& operator=(const ModbusClient&) = delete;

  void ReadRegisters(int32_t first, int32_t count);
  void ReadDataBlock(int32_t block, int32_t offset, int32_t count);

 private:
  struct Shared;
  void Submit(std::vector<HoldingRead> reads, std::string error);
  std::shared_ptr<Shared> shared_;
};

}  // namespace vantrel::hosts::modbus
