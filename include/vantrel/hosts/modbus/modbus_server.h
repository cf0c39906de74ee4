#pragma once
// A Modbus TCP server that serves a register space through a mapping, on the host's event
// loop: the listening socket and every client's socket are watched by the loop, and a read
// of holding registers (function 3) is answered from the register space as it is at that
// moment. Other functions get an "illegal function" exception. Nothing blocks the loop
// longer than one request takes to arrive once its first bytes are there.

#include <memory>
#include <string>
#include <vector>

#include "vantrel/hosts/modbus/modbus_mapping.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/poll_event_loop.h"

namespace vantrel::hosts::modbus {

class ModbusServer {
 public:
  ModbusServer(PollEventLoop& loop, const RegisterSpace& space, ModbusMapping mapping);
  ~ModbusServer();
  ModbusServer(const ModbusServer&) = delete;
  ModbusServer& operator=(const ModbusServer&) = delete;

  // Listens on `address` (e.g. "127.0.0.1") and `port` (0: a free one); false with
  // LastError() set when that is not possible.
  bool Listen(const std::string& address, int port);
  int Port() const { return port_; }
  const std::string& LastError() const { return lastError_; }
  int ClientCount() const { return static_cast<int>(clients_.size()); }
  // Stops listening and drops every client.
  void Close();

 private:
  struct Context;
  void Accept();
  void Serve(int client);
  void Drop(int client);

  PollEventLoop& loop_;
  const RegisterSpace& space_;
  ModbusMapping mapping_;
  std::unique_ptr<Context> context_;
  int listener_ = -1;
  int port_ = 0;
  std::vector<int> clients_;
  std::string lastError_;
};

}  // namespace vantrel::hosts::modbus
