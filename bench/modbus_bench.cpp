// Records per second over Modbus TCP on loopback: a control reading through the client
// against the same reads made directly with libmodbus, in the same run. The server (our
// Modbus server on the virtual controller) runs in a thread of its own; each iteration the
// controller writes a burst of records, then the reader fetches them: the counter area,
// then the records, in reads of at most 124 holding registers.

#include <benchmark/benchmark.h>
#include <modbus.h>

#include <future>
#include <memory>
#include <optional>
#include <thread>

#include "delaying_relay.h"
#include "vantrel/control.h"
#include "vantrel/hosts/modbus/modbus_client.h"
#include "vantrel/hosts/modbus/modbus_server.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/poll_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

using namespace hosts;
using namespace hosts::modbus;

constexpr int32_t kRing = 600;         // 3,616 registers: within the 4,096 of a register buffer
constexpr int32_t kBurst = kRing - 1;  // as many as a ring can hold unread

// The virtual controller served from its own thread.
class ServedController {
 public:
  ServedController() : program_(space_, Config(), clock_), server_(loop_, space_, {}) {
    program_.Install();
    server_.Listen("127.0.0.1", 0);
    port_ = server_.Port();
    thread_ = std::thread([this] {
      while (!stop_)
        loop_.RunFor(std::chrono::milliseconds(50));
    });
  }
  ~ServedController() {
    stop_ = true;
    loop_.Post([this] { loop_.Quit(); });
    thread_.join();
  }
  static TraceProgramConfig Config() {
    TraceProgramConfig c = PumpStationProgram();
    c.ringRecords = kRing;
    return c;
  }
  // Writes a burst on the server's thread and waits until it is written.
  void WriteBurst() {
    std::promise<void> written;
    loop_.Post([&] {
      program_.WriteRecords(kBurst);
      written.set_value();
    });
    written.get_future().wait();
  }
  int Port() const { return port_; }

 private:
  SystemClock clock_;
  RegisterSpace space_;
  TraceProgram program_;
  PollEventLoop loop_;
  ModbusServer server_;
  int port_ = 0;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

// The port a reader connects to: the server's own, or a relay in front of it that delays
// every transfer by the benchmark's argument in microseconds (0: none).
class Path {
 public:
  Path(const ServedController& controller, const benchmark::State& state) {
    port_ = controller.Port();
    if (state.range(0) > 0) {
      relay_ =
          std::make_unique<bench::DelayingRelay>(port_, std::chrono::microseconds(state.range(0)));
      port_ = relay_->Port();
    }
  }
  int Port() const { return port_; }

 private:
  std::unique_ptr<bench::DelayingRelay> relay_;
  int port_ = 0;
};

class CountingHost : public ControlEvents {
 public:
  ModbusClient* client = nullptr;
  PollEventLoop* loop = nullptr;
  int64_t rows = 0;
  int64_t target = 0;  // the loop stops when this many rows have come
  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    client->ReadRegisters(RegisterNumber, NumberToRead);
  }
  void OutputLine(std::string_view) override {
    if (++rows == target) loop->Quit();
  }
  void ModulError(int16_t, std::string_view message) override { error = message; }
  std::string error;
};

void BM_ControlOverModbus(benchmark::State& state) {
  ServedController controller;
  const Path path(controller, state);
  PollEventLoop loop;
  ScriptedPrompts prompts;
  SystemClock clock;
  CountingHost host;
  Control control(host, {loop, clock, prompts});
  ModbusClient::Callbacks callbacks;
  callbacks.answer = [&](std::vector<int32_t> words) { control.SetDataBlock(words); };
  ModbusClient client(
      {"127.0.0.1", path.Port()}, 1, {},
      [&](std::function<void()> task) { loop.Post(std::move(task)); }, callbacks);
  host.client = &client;
  host.loop = &loop;
  control.SetResourcePath(VANTREL_EXAMPLES_DIR);
  control.SetSymbFile(VANTREL_EXAMPLES_DIR "/pumps_symbols.sym");
  control.SetMaxRows(100000);
  control.SetInterval(1);
  control.SetStartRegister(ServedController::Config().startRegister);
  control.SetPCDStatus(2);
  control.Start();
  for (int i = 0; i < 200 && control.ReadState() < 2; ++i)
    loop.RunFor(std::chrono::milliseconds(5));
  control.SetRunMode(2);
  for (int i = 0; i < 200 && control.ReadState() < 3; ++i)
    loop.RunFor(std::chrono::milliseconds(5));
  if (control.ReadState() < 3) {
    const std::string why = "the control did not start reading: state " +
                            std::to_string(control.ReadState()) + " " + host.error;
    state.SkipWithError(why.c_str());
    return;
  }
  for (auto _ : state) {
    controller.WriteBurst();
    // The loop runs until the burst's last row has come, not a time slice longer.
    host.target = host.rows + kBurst;
    loop.RunFor(std::chrono::seconds(5));
    if (host.rows < host.target) {
      state.SkipWithError("the burst did not arrive within 5 s");
      return;
    }
  }
  state.SetItemsProcessed(state.iterations() * kBurst);
}

void BM_RawLibmodbusReads(benchmark::State& state) {
  ServedController controller;
  const Path path(controller, state);
  modbus_t* link = modbus_new_tcp("127.0.0.1", path.Port());
  if (link == nullptr || modbus_connect(link) != 0) {
    state.SkipWithError("cannot connect");
    return;
  }
  const TraceProgramConfig c = ServedController::Config();
  const int recordLength = static_cast<int>(c.registers.size());
  std::vector<uint16_t> words(static_cast<size_t>(2 * (16 + kRing * recordLength)));
  auto read = [&](int32_t firstRegister, int32_t registers) {
    for (int32_t done = 0; done < 2 * registers; done += 124) {
      const int part = std::min(124, 2 * registers - done);
      modbus_read_registers(link, 2 * firstRegister + done, part, words.data());
    }
  };
  for (auto _ : state) {
    controller.WriteBurst();
    read(c.bufferStart + c.counterIndex, 4);          // the counter area
    read(c.bufferStart + 16, kBurst * recordLength);  // the new records
  }
  state.SetItemsProcessed(state.iterations() * kBurst);
  modbus_close(link);
  modbus_free(link);
}

// Argument: microseconds added to every transfer each way (0: loopback as it is; 250: half
// a millisecond per read, as on a plant network).
BENCHMARK(BM_RawLibmodbusReads)->Arg(0)->Arg(250)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ControlOverModbus)->Arg(0)->Arg(250)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vantrel

BENCHMARK_MAIN();
