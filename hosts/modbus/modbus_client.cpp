#include "vantrel/hosts/modbus/modbus_client.h"

#include <modbus.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

#include "vantrel/hosts/modbus/retry_backoff.h"

namespace vantrel::hosts::modbus {
namespace {

struct Request {
  uint64_t generation = 0;
  std::vector<HoldingRead> reads;
};

enum class Outcome { Answered, LinkFailed, Refused };

bool IsExceptionResponse(int error) {
  return error >= EMBXILFUN && error <= EMBXGTAR;
}

void SetTimeout(modbus_t* link, int ms,
                int (*setter)(modbus_t*, uint32_t seconds, uint32_t microseconds)) {
  const auto total = static_cast<uint32_t>(std::max(ms, 1));
  setter(link, total / 1000, (total % 1000) * 1000);
}

}  // namespace

// What the host's thread and the worker share. Tasks posted to the host hold it too, so that
// one arriving after the client is gone finds `alive` false and does nothing.
struct ModbusClient::Shared : std::enable_shared_from_this<ModbusClient::Shared> {
  Endpoint endpoint;
  int unit = 1;
  ModbusMapping mapping;
  PostToHost post;
  Callbacks callbacks;
  Timing timing;

  std::mutex mutex;
  std::condition_variable wake;
  // Guarded by mutex.
  std::optional<Request> waiting;
  uint64_t newest = 0;  // the newest request; an older one is neither retried nor answered
  bool stopping = false;
  int openSocket = -1;  // the link's socket while it is open, for the destructor to cut short
  // The reads of the newest request while its answer has not reached the host.
  std::optional<std::vector<HoldingRead>> unanswered;

  bool alive = true;  // host thread only

  std::thread worker;

  void Run();
  Outcome Attempt(modbus_t*& link, const Request& request, std::vector<uint16_t>& words,
                  std::string& why);
  void Disconnect(modbus_t*& link);
  // Waits `ms` unless stopped meanwhile; false when stopping.
  bool Pause(int ms);
  bool IsNewest(uint64_t generation) {
    std::lock_guard lock(mutex);
    return generation == newest;
  }

  // Runs `task` on the host's thread, unless the client is gone by then.
  template <typename Task>
  void ToHost(Task task) {
    post([self = shared_from_this(), task = std::move(task)]() mutable {
      if (self->alive) task(*self);
    });
  }
  void Deliver(uint64_t generation, std::vector<int32_t> values) {
    ToHost([generation, values = std::move(values)](Shared& self) mutable {
      // An answer to a request that a newer one replaced is of no use any more.
      if (!self.IsNewest(generation)) return;
      {
        std::lock_guard lock(self.mutex);
        self.unanswered.reset();
      }
      if (self.callbacks.answer) self.callbacks.answer(std::move(values));
    });
  }
  void Report(std::optional<bool>& reported, bool connected) {
    if (reported == connected) return;
    reported = connected;
    ToHost([connected](Shared& self) {
      if (self.callbacks.connection) self.callbacks.connection(connected);
    });
  }
  void Complain(std::string message) {
    ToHost([message = std::move(message)](Shared& self) {
      if (self.callbacks.error) self.callbacks.error(message);
    });
  }
};

ModbusClient::ModbusClient(Endpoint endpoint, int unit, ModbusMapping mapping, PostToHost post,
                           Callbacks callbacks, Timing timing)
    : shared_(std::make_shared<Shared>()) {
  shared_->endpoint = std::move(endpoint);
  shared_->unit = unit;
  shared_->mapping = std::move(mapping);
  shared_->post = std::move(post);
  shared_->callbacks = std::move(callbacks);
  shared_->timing = timing;
  shared_->worker = std::thread([shared = shared_] { shared->Run(); });
}

ModbusClient::~ModbusClient() {
  {
    std::lock_guard lock(shared_->mutex);
    shared_->stopping = true;
    // Wakes a read waiting for its answer at once; the worker then closes the socket.
    if (shared_->openSocket >= 0) ::shutdown(shared_->openSocket, SHUT_RDWR);
  }
  shared_->wake.notify_all();
  shared_->worker.join();
  shared_->alive = false;
}

void ModbusClient::ReadRegisters(int32_t first, int32_t count) {
  std::string error;
  auto reads = shared_->mapping.RegisterReads(first, count, error);
  Submit(std::move(reads), std::move(error));
}

void ModbusClient::ReadDataBlock(int32_t block, int32_t offset, int32_t count) {
  std::string error;
  auto reads = shared_->mapping.DataBlockReads(block, offset, count, error);
  Submit(std::move(reads), std::move(error));
}

void ModbusClient::Submit(std::vector<HoldingRead> reads, std::string error) {
  Shared& s = *shared_;
  if (error.empty() && !IsUnitId(s.unit)) {
    error = "unit " + std::to_string(s.unit) + " is not a Modbus TCP unit id (0 to 247, or 255)";
  }
  {
    std::lock_guard lock(s.mutex);
    // The same request asked again while it is under way (a host that grew impatient) is
    // served by the answer on its way: starting over would never finish a read that takes
    // longer than the host's patience.
    if (error.empty() && s.unanswered == reads) return;
    const uint64_t generation = ++s.newest;
    // Whatever was asked before is not answered any more, even when this cannot be served.
    s.waiting.reset();
    s.unanswered.reset();
    if (error.empty()) {
      s.unanswered = reads;
      s.waiting = Request{generation, std::move(reads)};
    }
  }
  if (!error.empty()) {
    s.Complain(std::move(error));
    return;
  }
  s.wake.notify_all();
}

bool ModbusClient::Shared::Pause(int ms) {
  std::unique_lock lock(mutex);
  return !wake.wait_for(lock, std::chrono::milliseconds(ms), [this] { return stopping; });
}

void ModbusClient::Shared::Disconnect(modbus_t*& link) {
  if (link == nullptr) return;
  {
    std::lock_guard lock(mutex);
    openSocket = -1;
  }
  modbus_close(link);
  modbus_free(link);
  link = nullptr;
}

Outcome ModbusClient::Shared::Attempt(modbus_t*& link, const Request& request,
                                      std::vector<uint16_t>& words, std::string& why) {
  if (link == nullptr) {
    // A name is looked up here, an address taken as it is; IPv4 and IPv6 alike.
    link = modbus_new_tcp_pi(endpoint.host.c_str(), std::to_string(endpoint.port).c_str());
    if (link == nullptr) return Outcome::LinkFailed;
    modbus_set_slave(link, unit);
    SetTimeout(link, timing.responseTimeoutMs, modbus_set_response_timeout);
    SetTimeout(link, timing.responseTimeoutMs, modbus_set_byte_timeout);
    if (modbus_connect(link) != 0) return Outcome::LinkFailed;
    std::lock_guard lock(mutex);
    if (stopping) return Outcome::LinkFailed;
    openSocket = modbus_get_socket(link);
  }
  words.clear();
  for (const HoldingRead& read : request.reads) {
    const size_t at = words.size();
    words.resize(at + static_cast<size_t>(read.words));
    if (modbus_read_registers(link, read.address, read.words, words.data() + at) == read.words) {
      continue;
    }
    const int error = errno;
    if (!IsExceptionResponse(error)) return Outcome::LinkFailed;
    why = "the controller refused to read holding registers " + std::to_string(read.address) +
          " to " + std::to_string(read.address + read.words - 1) + ": " + modbus_strerror(error);
    return Outcome::Refused;
  }
  return Outcome::Answered;
}

void ModbusClient::Shared::Run() {
  modbus_t* link = nullptr;
  RetryBackoff backoff(timing.firstRetryMs, timing.longestRetryMs);
  std::optional<Request> current;
  std::optional<bool> reported;  // the connection state the host last heard of
  std::string refusal;           // the exception response the host last heard of
  std::vector<uint16_t> words;
  while (true) {
    {
      std::unique_lock lock(mutex);
      wake.wait(lock, [this, &current] { return stopping || waiting || current; });
      if (stopping) break;
      // A newer request replaces the one being retried.
      if (waiting) {
        current = std::move(waiting);
        waiting.reset();
      }
      if (current->generation != newest) {
        current.reset();
        continue;
      }
    }
    if (current->reads.empty()) {
      // Nothing to read proves nothing about the controller either way.
      Deliver(current->generation, {});
      current.reset();
      continue;
    }
    std::string why;
    const Outcome outcome = Attempt(link, *current, words, why);
    if (outcome == Outcome::Answered) {
      Report(reported, true);
      Deliver(current->generation, mapping.Join(words));
      current.reset();
      backoff.Reset();
      refusal.clear();
      continue;
    }
    // Whatever failed, the link is not trusted again: a fresh connection for the retry.
    Disconnect(link);
    Report(reported, false);
    if (outcome == Outcome::Refused && why != refusal) {
      refusal = why;
      Complain(why);
    }
    if (!Pause(backoff.Next())) break;
  }
  Disconnect(link);
}

}  // namespace vantrel::hosts::modbus
