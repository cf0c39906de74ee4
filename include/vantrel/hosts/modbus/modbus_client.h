#pragma once
// A Modbus TCP client for the control's host. libmodbus blocks, so the reads run on a worker
// thread of the client's own; answers, connection changes and errors are handed to the
// host's thread through `post`, so that the control is only ever touched there.
//
// One request is served at a time; a new request replaces one still waiting, and the answer
// of a request that a newer one replaced is dropped. A failed read (connection lost, timeout,
// exception response) closes the link, reports the loss, and the same request is tried
// again after a back-off of 100 ms doubling to 2 s, over a fresh connection: libmodbus stays
// out of step after a timeout otherwise. "Connected" is reported when a read has succeeded,
// not when the connection opened. Nothing is ever answered that the controller did not send.

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
    // The words asked for, element 0 first.
    std::function<void(std::vector<int32_t>)> answer;
    // On each change: false when a read failed, true when one succeeded again.
    std::function<void(bool connected)> connection;
    // A request that cannot be served (an unmapped data block, addresses beyond the Modbus
    // address space, a unit id Modbus TCP does not have), or why the controller refused one
    // (its exception response; said once until a read succeeds again).
    std::function<void(std::string)> error;
  };
  struct Timing {
    int responseTimeoutMs = 500;
    int firstRetryMs = 100;
    int longestRetryMs = 2000;
  };

  // `post` runs a task on the host's thread (e.g. PollEventLoop::Post); `unit` is the unit id.
  ModbusClient(Endpoint endpoint, int unit, ModbusMapping mapping, PostToHost post,
               Callbacks callbacks, Timing timing);
  ModbusClient(Endpoint endpoint, int unit, ModbusMapping mapping, PostToHost post,
               Callbacks callbacks)
      : ModbusClient(std::move(endpoint), unit, std::move(mapping), std::move(post),
                     std::move(callbacks), Timing{}) {}
  // Stops the worker: a read under way is cut short; a connection being opened may take up
  // to one response timeout. No callback runs afterwards.
  ~ModbusClient();
  ModbusClient(const ModbusClient&) = delete;
  ModbusClient& operator=(const ModbusClient&) = delete;

  // From the host's thread.
  void ReadRegisters(int32_t first, int32_t count);
  void ReadDataBlock(int32_t block, int32_t offset, int32_t count);

 private:
  struct Shared;
  void Submit(std::vector<HoldingRead> reads, std::string error);
  std::shared_ptr<Shared> shared_;
};

}  // namespace vantrel::hosts::modbus
