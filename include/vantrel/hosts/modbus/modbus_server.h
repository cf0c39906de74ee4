#pragma once
// A Modbus TCP server that serves a register space through a mapping, on the host's event
// loop: the listening socket and every client's socket are watched by the loop and never
// block it (a request that arrives in pieces is kept until it is whole, a reply the client
// does not take at once is sent when it can take it). A read of holding registers
// (function 3) is answered from the register space as it is at that moment; other
// functions, and addresses that map to nothing, get an exception response. A client that
// sends what cannot be a Modbus TCP request, or stops taking its replies, is dropped.

#include <cstdint>
#include <map>
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
  // LastError() set when that is not possible (the port in use, an unknown address...).
  bool Listen(const std::string& address, int port);
  // The port listened on (kept after Close, so that the same one can be taken again).
  int Port() const { return port_; }
  const std::string& LastError() const { return lastError_; }
  int ClientCount() const { return static_cast<int>(clients_.size()); }
  // Stops listening and drops every client.
  void Close();

 private:
  struct Client {
    std::vector<uint8_t> received;  // bytes of a request not yet complete
    std::vector<uint8_t> unsent;    // replies the client has not taken yet
    bool watchingWrites = false;
  };
  void Accept();
  void Serve(int fd, short events);
  // Sends what it can; false when the client is gone or takes nothing for too long.
  bool Flush(int fd, Client& client);
  void Drop(int fd);
  template <typename Handler>
  PollEventLoop::FdCallback Guarded(Handler handler);

  PollEventLoop& loop_;
  const RegisterSpace& space_;
  ModbusMapping mapping_;
  int listener_ = -1;
  int port_ = 0;
  std::map<int, Client> clients_;
  std::string lastError_;
  // Callbacks the loop has already picked for this turn check it before touching the server.
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace vantrel::hosts::modbus
