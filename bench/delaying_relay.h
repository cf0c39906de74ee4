#pragma once
// A TCP relay on loopback that passes bytes on in both directions after a fixed delay: a
// network of that latency between a Modbus client and our server, so that the benchmark can
// show the host's share where a read costs what it costs on a plant network. One connection
// at a time; a new one is accepted when the last has closed.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <thread>
#include <vector>

namespace vantrel::bench {

class DelayingRelay {
 public:
  DelayingRelay(int serverPort, std::chrono::microseconds delay)
      : serverPort_(serverPort), delay_(delay) {
    listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = Loopback(0);
    ::bind(listener_, Address(address), sizeof address);
    ::listen(listener_, 1);
    socklen_t length = sizeof address;
    ::getsockname(listener_, Address(address), &length);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { Run(); });
  }
  ~DelayingRelay() {
    stop_ = true;
    thread_.join();
    ::close(listener_);
  }
  int Port() const { return port_; }

 private:
  using Clock = std::chrono::steady_clock;
  struct Chunk {
    Clock::time_point due;
    std::vector<char> bytes;
  };

  static sockaddr_in Loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
  }
  static sockaddr* Address(sockaddr_in& address) { return reinterpret_cast<sockaddr*>(&address); }

  // Waits up to `limit` (and at most 50 ms, to see a stop) for the descriptors.
  static int Wait(std::vector<pollfd>& fds, std::chrono::nanoseconds limit) {
    limit = std::min<std::chrono::nanoseconds>(limit, std::chrono::milliseconds(50));
    const timespec timeout{0, static_cast<long>(std::max<int64_t>(limit.count(), 0))};
    return ::ppoll(fds.data(), fds.size(), &timeout, nullptr);
  }

  void Run() {
    while (!stop_) {
      std::vector<pollfd> waiting{{listener_, POLLIN, 0}};
      if (Wait(waiting, std::chrono::milliseconds(50)) <= 0) continue;
      const int client = ::accept(listener_, nullptr, nullptr);
      if (client < 0) continue;
      const int server = ::socket(AF_INET, SOCK_STREAM, 0);
      sockaddr_in address = Loopback(serverPort_);
      if (::connect(server, Address(address), sizeof address) == 0) Relay(client, server);
      ::close(server);
      ::close(client);
    }
  }

  // Bytes read from one side are written to the other once `delay_` has passed, in order.
  void Relay(int client, int server) {
    const int one = 1;
    for (int fd : {client, server})
      ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    const int ends[2] = {client, server};
    std::deque<Chunk> towards[2];  // [0]: to the server, [1]: to the client
    while (!stop_) {
      auto next = Clock::time_point::max();
      for (const auto& queue : towards)
        if (!queue.empty()) next = std::min(next, queue.front().due);
      std::vector<pollfd> fds{{client, POLLIN, 0}, {server, POLLIN, 0}};
      const auto limit =
          next == Clock::time_point::max() ? std::chrono::nanoseconds::max() : next - Clock::now();
      if (Wait(fds, limit) < 0) return;
      for (int side = 0; side < 2; ++side) {
        if ((fds[static_cast<size_t>(side)].revents & (POLLIN | POLLHUP | POLLERR)) == 0) continue;
        std::vector<char> bytes(65536);
        const ssize_t n = ::read(ends[side], bytes.data(), bytes.size());
        if (n <= 0) return;
        bytes.resize(static_cast<size_t>(n));
        towards[side].push_back({Clock::now() + delay_, std::move(bytes)});
      }
      for (int side = 0; side < 2; ++side) {
        auto& queue = towards[side];
        while (!queue.empty() && queue.front().due <= Clock::now()) {
          const std::vector<char>& bytes = queue.front().bytes;
          if (::write(ends[1 - side], bytes.data(), bytes.size()) !=
              static_cast<ssize_t>(bytes.size())) {
            return;
          }
          queue.pop_front();
        }
      }
    }
  }

  int serverPort_;
  std::chrono::microseconds delay_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace vantrel::bench
