#include "vantrel/hosts/modbus/modbus_server.h"

#include <arpa/inet.h>
#include <modbus.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace vantrel::hosts::modbus {
namespace {

constexpr int kReadHoldingRegisters = 3;
constexpr int kPendingConnections = 8;

}  // namespace

// The libmodbus context the server parses requests and builds replies with; each client's
// socket is set into it in turn.
struct ModbusServer::Context {
  modbus_t* ctx = nullptr;
  ~Context() {
    if (ctx != nullptr) modbus_free(ctx);
  }
};

ModbusServer::ModbusServer(PollEventLoop& loop, const RegisterSpace& space, ModbusMapping mapping)
    : loop_(loop), space_(space), mapping_(std::move(mapping)) {}

ModbusServer::~ModbusServer() {
  Close();
}

bool ModbusServer::Listen(const std::string& address, int port) {
  Close();
  context_ = std::make_unique<Context>();
  context_->ctx = modbus_new_tcp(address.c_str(), port);
  if (context_->ctx == nullptr) {
    lastError_ = std::string("cannot create the server: ") + modbus_strerror(errno);
    return false;
  }
  // A request whose first bytes have come must be complete within a second.
  modbus_set_indication_timeout(context_->ctx, 1, 0);
  listener_ = modbus_tcp_listen(context_->ctx, kPendingConnections);
  if (listener_ < 0) {
    lastError_ = modbus_strerror(errno);
    context_.reset();
    return false;
  }
  sockaddr_in bound{};
  socklen_t length = sizeof bound;
  if (::getsockname(listener_, reinterpret_cast<sockaddr*>(&bound), &length) == 0) {
    port_ = ntohs(bound.sin_port);
  }
  loop_.WatchFd(listener_, PollEventLoop::kReadable, [this](int, short) { Accept(); });
  return true;
}

void ModbusServer::Close() {
  for (const int client : std::vector<int>(clients_))
    Drop(client);
  if (listener_ >= 0) {
    loop_.UnwatchFd(listener_);
    ::close(listener_);
    listener_ = -1;
  }
  context_.reset();
}

void ModbusServer::Accept() {
  const int client = ::accept(listener_, nullptr, nullptr);
  if (client < 0) return;  // the connection went away before it was taken
  clients_.push_back(client);
  loop_.WatchFd(client, PollEventLoop::kReadable, [this](int fd, short) { Serve(fd); });
}

void ModbusServer::Drop(int client) {
  loop_.UnwatchFd(client);
  ::close(client);
  clients_.erase(std::remove(clients_.begin(), clients_.end(), client), clients_.end());
}

void ModbusServer::Serve(int client) {
  modbus_t* ctx = context_->ctx;
  modbus_set_socket(ctx, client);
  uint8_t request[MODBUS_TCP_MAX_ADU_LENGTH];
  const int length = modbus_receive(ctx, request);
  if (length <= 0) {
    // The client closed, sent garbage or stalled mid-request: it is dropped.
    Drop(client);
    return;
  }
  const int header = modbus_get_header_length(ctx);
  const int function = request[header];
  if (function != kReadHoldingRegisters) {
    if (modbus_reply_exception(ctx, request, MODBUS_EXCEPTION_ILLEGAL_FUNCTION) < 0) {
      Drop(client);
    }
    return;
  }
  const int address = (request[header + 1] << 8) | request[header + 2];
  const int count = (request[header + 3] << 8) | request[header + 4];
  // A mapping of exactly the registers asked for, filled from the register space now.
  modbus_mapping_t* image = modbus_mapping_new_start_address(
      0, 0, 0, 0, static_cast<unsigned>(address), static_cast<unsigned>(std::max(count, 1)), 0, 0);
  if (image == nullptr) {
    Drop(client);
    return;
  }
  for (int i = 0; i < count; ++i) {
    const auto place = mapping_.Locate(address + i);
    uint16_t value = 0;
    if (place) {
      const int32_t word = place->dataBlock ? space_.DataBlockWord(place->block, place->index)
                                            : space_.Register(place->index);
      uint16_t first = 0;
      uint16_t second = 0;
      mapping_.Split(word, first, second);
      value = place->firstHalf ? first : second;
    }
    image->tab_registers[i] = value;
  }
  // libmodbus checks the count (at most 125) and answers an exception when it is wrong.
  const int sent = modbus_reply(ctx, request, length, image);
  modbus_mapping_free(image);
  if (sent < 0) Drop(client);
}

}  // namespace vantrel::hosts::modbus
