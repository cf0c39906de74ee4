// Records decoded and appended per second through the control's public interface: a host
// answering inside the request events from a register space that holds a ring of pump
// station records (12 columns: bits with value lists, a nibble, a byte with ranges, words
// with decimals, signed and hexadecimal, a time stamp, application and step texts, a symbol
// name and a string).

#include <benchmark/benchmark.h>

#include <optional>

#include "vantrel/control.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

constexpr int32_t kRing = 100;
constexpr int32_t kBurst = 50;

class AnsweringHost : public ControlEvents {
 public:
  explicit AnsweringHost(hosts::RegisterSpace& space) : space_(space) {}
  Control* control = nullptr;
  int64_t lines = 0;
  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    control->SetDataBlock(space_.ReadRegisters(RegisterNumber, NumberToRead));
  }
  void OutputLine(std::string_view) override { ++lines; }

 private:
  hosts::RegisterSpace& space_;
};

// A control that reads the pump station, with `kRing` records in the ring; each Poll()
// announces `kBurst` new records and lets the control fetch and decode them.
struct LiveControl {
  explicit LiveControl(int32_t maxRows) : host(space) {
    hosts::TraceProgramConfig config = hosts::PumpStationProgram();
    config.ringRecords = kRing;
    program.emplace(space, config, loop.Clock());
    program->Install();
    program->WriteRecords(kRing);
    counter = program->Counter();
    control.emplace(host, ControlServices{loop, loop.Clock(), prompts});
    host.control = &*control;
    control->SetResourcePath(VANTREL_EXAMPLES_DIR);
    control->SetSymbFile(VANTREL_EXAMPLES_DIR "/pumps_symbols.sym");
    control->SetMaxRows(maxRows);
    control->SetInterval(1);
    control->SetStartRegister(config.startRegister);
    control->Start();
    control->SetRunMode(2);
  }
  void Poll() {
    counter += kBurst;
    writeIndex = (writeIndex + kBurst) % kRing;
    space.SetRegister(1004, counter);
    space.SetRegister(1005, writeIndex);
    loop.Advance(1);
  }

  ManualEventLoop loop;
  ScriptedPrompts prompts;
  hosts::RegisterSpace space;
  std::optional<hosts::TraceProgram> program;
  AnsweringHost host;
  std::optional<Control> control;
  int32_t counter = 0;
  int32_t writeIndex = 0;
};

void DecodeAndAppend(benchmark::State& state, int32_t maxRows, bool fillFirst) {
  LiveControl live(maxRows);
  if (live.control->ReadState() != 3) {
    state.SkipWithError("the control did not reach the running state");
    return;
  }
  if (fillFirst) {
    while (live.control->Table().DataRowCount() < maxRows)
      live.Poll();
  }
  const int64_t before = live.host.lines;
  for (auto _ : state)
    live.Poll();
  const int64_t decoded = live.host.lines - before;
  if (decoded != static_cast<int64_t>(state.iterations()) * kBurst) {
    state.SkipWithError("records were lost");
    return;
  }
  state.SetItemsProcessed(decoded);
  state.counters["rows"] = live.control->Table().DataRowCount();
}

void BM_DecodeIntoSmallTable(benchmark::State& state) {
  DecodeAndAppend(state, 500, true);
}
void BM_DecodeIntoFullTable100k(benchmark::State& state) {
  DecodeAndAppend(state, 100000, true);
}

BENCHMARK(BM_DecodeIntoSmallTable);
BENCHMARK(BM_DecodeIntoFullTable100k);

}  // namespace
}  // namespace vantrel

BENCHMARK_MAIN();
