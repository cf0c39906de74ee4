#include "vantrel/hosts/modbus/modbus_client.h"

#include <modbus.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace vantrel::hosts::modbus {

// What the host's thread and the worker share. Tasks posted to the host hold it too, so
// that one arriving after the client is gone finds `alive` false and does nothing.
struct ModbusClient::Shared : std::enable_shared_from_this<ModbusClient::Shared> {
  Endpoint endpoint;
  int unit = 1;
  ModbusMapping mapping;
  PostToHost post;
  Callbacks callbacks;
  Timing timing;

  std::mutex mutex;
  std::condition_variable wake;
  struct Request {
    uint64_t generation = 0;
    std::vector<HoldingRead> reads;
  };
  std::optional<Request> waiting;  // guarded by mutex
  bool stopping = false;           // guarded by mutex
  uint64_t latest = 0;             // host thread only: the newest request's generation
  bool alive = true;               // host thread only
  std::optional<bool> reported;    // worker only: the last connection state reported

  std::thread worker;

  void Run();
  bool Serve(modbus_t*& link, const Request& request, std::vector<int32_t>& values);
  void Report(bool connected);
  void Deliver(uint64_t generation, std::vector<int32_t> values);
  // Waits `ms` unless stopped meanwhile; false when stopping.
  bool Pause(int ms);
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
  const uint64_t generation = ++s.latest;
  if (!error.empty()) {
    // Nothing can be read for this request; the host hears why and no answer comes.
    s.post([shared = shared_, error = std::move(error)] {
      if (shared->alive && shared->callbacks.error) shared->callbacks.error(error);
    });
    return;
  }
  {
    std::lock_guard lock(s.mutex);
    s.waiting = Shared::Request{generation, std::move(reads)};
  }
  s.wake.notify_all();
}

bool ModbusClient::Shared::Pause(int ms) {
  std::unique_lock lock(mutex);
  return !wake.wait_for(lock, std::chrono::milliseconds(ms), [this] { return stopping; });
}

void ModbusClient::Shared::Report(bool connected) {
  if (reported == connected) return;
  reported = connected;
  post([self = shared_from_this(), connected] {
    if (self->alive && self->callbacks.connection) self->callbacks.connection(connected);
  });
}

void ModbusClient::Shared::Deliver(uint64_t generation, std::vector<int32_t> values) {
  post([self = shared_from_this(), generation, values = std::move(values)]() mutable {
    // An answer to a request that a newer one replaced is of no use any more.
    if (!self->alive || generation != self->latest) return;
    if (self->callbacks.answer) self->callbacks.answer(std::move(values));
  });
}

bool ModbusClient::Shared::Serve(modbus_t*& link, const Request& request,
                                 std::vector<int32_t>& values) {
  if (link == nullptr) {
    link = modbus_new_tcp(endpoint.host.c_str(), endpoint.port);
    if (link == nullptr) return false;
    modbus_set_slave(link, unit);
    const auto timeout = static_cast<uint32_t>(timing.responseTimeoutMs);
    modbus_set_response_timeout(link, timeout / 1000, (timeout % 1000) * 1000);
    if (modbus_connect(link) != 0) return false;
  }
  std::vector<uint16_t> words;
  for (const HoldingRead& read : request.reads) {
    const size_t at = words.size();
    words.resize(at + static_cast<size_t>(read.words));
    if (modbus_read_registers(link, read.address, read.words, words.data() + at) != read.words) {
      return false;
    }
  }
  values = mapping.Join(words);
  return true;
}

void ModbusClient::Shared::Run() {
  modbus_t* link = nullptr;
  auto drop = [&link] {
    if (link == nullptr) return;
    modbus_close(link);
    modbus_free(link);
    link = nullptr;
  };
  int retryMs = timing.firstRetryMs;
  std::optional<Request> current;
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
    }
    std::vector<int32_t> values;
    if (Serve(link, *current, values)) {
      Report(true);
      Deliver(current->generation, std::move(values));
      current.reset();
      retryMs = timing.firstRetryMs;
      continue;
    }
    // Whatever failed, the link is not trusted again: a fresh connection for the retry.
    drop();
    Report(false);
    if (!Pause(retryMs)) break;
    retryMs = std::min(retryMs * 2, timing.longestRetryMs);
  }
  drop();
}

}  // namespace vantrel::hosts::modbus
