#pragma once
// For the Modbus tests: request bytes, a client that sends raw bytes, a listener that takes
// connections and answers nothing (or hangs up at once), and a bounded wait on a real loop.

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <vector>

#include "vantrel/hosts/modbus/modbus_mapping.h"
#include "vantrel/poll_event_loop.h"

namespace vantrel::hosts::modbus::test {

using Bytes = std::vector<uint8_t>;

// Runs the loop until `done` holds, at most `limit`.
template <typename Done>
bool RunUntil(PollEventLoop& loop, Done done,
              std::chrono::milliseconds limit = std::chrono::milliseconds(5000)) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!done() && std::chrono::steady_clock::now() < deadline)
    loop.RunFor(std::chrono::milliseconds(5));
  return done();
}

// A read of holding registers (or another function) as it goes over the wire.
inline Bytes ReadRequest(uint16_t transaction, uint16_t address, uint16_t count, uint8_t unit = 1,
                         uint8_t function = 3) {
  const auto hi = [](unsigned v) { return static_cast<uint8_t>(v >> 8); };
  const auto lo = [](unsigned v) { return static_cast<uint8_t>(v & 0xFF); };
  return {hi(transaction), lo(transaction), 0,           0,         0,        6, unit,
          function,        hi(address),     lo(address), hi(count), lo(count)};
}

// A socket bound to a free loopback port; `port` is set to it.
inline int BoundSocket(int flags, int& port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
  const int on = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  port = ntohs(address.sin_port);
  return fd;
}

class RawClient {
 public:
  explicit RawClient(int port) : fd_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    connected_ = ::connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  ~RawClient() { ::close(fd_); }
  bool Connected() const { return connected_; }
  void Send(const Bytes& bytes) { ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  // Takes what has arrived without waiting; false once the server has hung up.
  bool Poll() {
    uint8_t chunk[1024];
    ssize_t n;
    while ((n = ::recv(fd_, chunk, sizeof chunk, MSG_DONTWAIT)) > 0)
      received.insert(received.end(), chunk, chunk + n);
    hungUp = hungUp || n == 0;
    return !hungUp;
  }

  Bytes received;
  bool hungUp = false;

 private:
  int fd_;
  bool connected_ = false;
};

// A listener on a free loopback port, watched by the loop: it takes every connection and
// then either keeps it open without a word or closes it at once.
class SilentListener {
 public:
  SilentListener(PollEventLoop& loop, bool hangUp) : loop_(loop) {
    fd_ = BoundSocket(SOCK_NONBLOCK, port_);
    ::listen(fd_, 8);
    loop_.WatchFd(fd_, PollEventLoop::kReadable, [this, hangUp](int, short) {
      const int client = ::accept(fd_, nullptr, nullptr);
      if (client < 0) return;
      ++accepted;
      if (hangUp) ::close(client);
      if (!hangUp) taken_.push_back(client);
    });
  }
  ~SilentListener() {
    loop_.UnwatchFd(fd_);
    ::close(fd_);
    for (const int client : taken_)
      ::close(client);
  }
  int Port() const { return port_; }

  int accepted = 0;

 private:
  PollEventLoop& loop_;
  int fd_ = -1;
  int port_ = 0;
  std::vector<int> taken_;
};

}  // namespace vantrel::hosts::modbus::test
