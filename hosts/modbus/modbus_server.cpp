#include "vantrel/hosts/modbus/modbus_server.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "server_requests.h"

namespace vantrel::hosts::modbus {
namespace {

constexpr int kPendingConnections = 16;
constexpr size_t kReceiveChunk = 4096;
// About 250 full replies: a client that lets more pile up is not reading them.
constexpr size_t kMostUnsent = 64 * 1024;

std::string SystemError(const std::string& what, int error) {
  return what + ": " + std::strerror(error);
}

int BoundPort(int fd) {
  sockaddr_storage bound{};
  socklen_t length = sizeof bound;
  if (::getsockname(fd, reinterpret_cast<sockaddr*>(&bound), &length) != 0) return 0;
  if (bound.ss_family == AF_INET6) {
    return ntohs(reinterpret_cast<const sockaddr_in6*>(&bound)->sin6_port);
  }
  return ntohs(reinterpret_cast<const sockaddr_in*>(&bound)->sin_port);
}

}  // namespace

ModbusServer::ModbusServer(PollEventLoop& loop, const RegisterSpace& space, ModbusMapping mapping)
    : loop_(loop), space_(space), mapping_(std::move(mapping)) {}

ModbusServer::~ModbusServer() {
  *alive_ = false;
  Close();
}

template <typename Handler>
PollEventLoop::FdCallback ModbusServer::Guarded(Handler handler) {
  return [alive = std::weak_ptr<bool>(alive_), handler](int fd, short events) {
    const auto token = alive.lock();
    if (token && *token) handler(fd, events);
  };
}

bool ModbusServer::Listen(const std::string& address, int port) {
  Close();
  lastError_.clear();
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  addrinfo* found = nullptr;
  const std::string service = std::to_string(port);
  if (const int status = ::getaddrinfo(address.c_str(), service.c_str(), &hints, &found);
      status != 0) {
    lastError_ = "cannot listen on " + address + ": " + ::gai_strerror(status);
    return false;
  }
  for (const addrinfo* a = found; a != nullptr && listener_ < 0; a = a->ai_next) {
    const int fd =
        ::socket(a->ai_family, a->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, a->ai_protocol);
    if (fd < 0) {
      lastError_ = SystemError("cannot open a socket", errno);
      continue;
    }
    // The port can be taken again at once after Close, while old connections linger.
    const int on = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(fd, a->ai_addr, a->ai_addrlen) != 0 || ::listen(fd, kPendingConnections) != 0) {
      lastError_ = SystemError("cannot listen on " + address + ":" + service, errno);
      ::close(fd);
      continue;
    }
    listener_ = fd;
  }
  ::freeaddrinfo(found);
  if (listener_ < 0) return false;
  lastError_.clear();
  port_ = BoundPort(listener_);
  loop_.WatchFd(listener_, PollEventLoop::kReadable, Guarded([this](int, short) { Accept(); }));
  return true;
}

void ModbusServer::Close() {
  while (!clients_.empty())
    Drop(clients_.begin()->first);
  if (listener_ >= 0) {
    loop_.UnwatchFd(listener_);
    ::close(listener_);
    listener_ = -1;
  }
}

void ModbusServer::Accept() {
  if (listener_ < 0) return;
  // Everyone waiting is taken; the loop reports the listener again for later arrivals.
  while (true) {
    const int fd = ::accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd < 0) return;  // none left, or one went away before it was taken
    const int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    clients_[fd] = Client{};
    loop_.WatchFd(fd, PollEventLoop::kReadable,
                  Guarded([this](int client, short events) { Serve(client, events); }));
  }
}

void ModbusServer::Drop(int fd) {
  loop_.UnwatchFd(fd);
  ::close(fd);
  clients_.erase(fd);
}

bool ModbusServer::Flush(int fd, Client& client) {
  size_t sent = 0;
  while (sent < client.unsent.size()) {
    const ssize_t n = ::send(fd, client.unsent.data() + sent, client.unsent.size() - sent,
                             MSG_NOSIGNAL | MSG_DONTWAIT);
    if (n > 0) {
      sent += static_cast<size_t>(n);
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      break;
    } else {
      return false;
    }
  }
  client.unsent.erase(client.unsent.begin(), client.unsent.begin() + static_cast<long>(sent));
  if (client.unsent.size() > kMostUnsent) return false;
  // Writability is watched only while replies wait, or the loop would spin.
  const bool waiting = !client.unsent.empty();
  if (waiting != client.watchingWrites) {
    client.watchingWrites = waiting;
    const short events =
        waiting ? PollEventLoop::kReadable | PollEventLoop::kWritable : PollEventLoop::kReadable;
    loop_.WatchFd(fd, events, Guarded([this](int c, short e) { Serve(c, e); }));
  }
  return true;
}

void ModbusServer::Serve(int fd, short events) {
  const auto it = clients_.find(fd);
  if (it == clients_.end()) return;  // dropped earlier in this turn of the loop
  Client& client = it->second;
  if (events & PollEventLoop::kReadable) {
    uint8_t chunk[kReceiveChunk];
    const ssize_t n = ::recv(fd, chunk, sizeof chunk, MSG_DONTWAIT);
    if (n == 0 || (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) {
      Drop(fd);  // the client closed, or its connection broke
      return;
    }
    if (n > 0) client.received.insert(client.received.end(), chunk, chunk + n);
    size_t used = 0;
    while (true) {
      const std::span<const uint8_t> rest(client.received.data() + used,
                                          client.received.size() - used);
      const std::optional<size_t> size = FirstRequestSize(rest);
      if (!size) {
        Drop(fd);  // not Modbus TCP: nothing it sends later can be trusted to line up
        return;
      }
      if (*size == 0) break;
      AppendReply(rest.first(*size), space_, mapping_, client.unsent);
      used += *size;
    }
    client.received.erase(client.received.begin(),
                          client.received.begin() + static_cast<long>(used));
  }
  if (!Flush(fd, client)) Drop(fd);
}

}  // namespace vantrel::hosts::modbus
