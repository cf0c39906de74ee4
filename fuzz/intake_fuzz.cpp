// The acquisition intake driven by an arbitrary sequence of events: answers taken from a
// running pump-station program (so that reading gets deep), arbitrary blocks, timer ticks,
// bursts, restarts and command words. The reading state stays within 0..4, every record
// row carries one cell per trace column, and only marker rows take the table beyond its
// row limit.
#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "vantrel/control.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace {

using namespace vantrel;

class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  bool Empty() const { return at_ >= size_; }
  uint8_t Byte() { return at_ < size_ ? data_[at_++] : 0; }
  int32_t Word() {
    uint32_t w = 0;
    for (int i = 0; i < 4; ++i)
      w = (w << 8) | Byte();
    return static_cast<int32_t>(w);
  }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t at_ = 0;
};

struct Request {
  bool dataBlock = false;
  int32_t first = 0;
  int32_t block = 0;
  int32_t count = 0;
};

class FuzzHost : public ControlEvents {
 public:
  Control* control = nullptr;
  std::optional<Request> pending;
  int markerRows = 0;
  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    pending = Request{false, RegisterNumber, 0, NumberToRead};
  }
  void ReadPCDDB(int16_t DBNumber, int16_t DBOffset, int16_t NumberToRead) override {
    pending = Request{true, DBOffset, DBNumber, NumberToRead};
  }
  void OutputLine(std::string_view line) override {
    const int cells = static_cast<int>(std::count(line.begin(), line.end(), '\t')) + 1;
    const std::string_view status = line.substr(0, line.find('\t'));
    const bool marker = status.substr(0, 5) == "Miss " || status == "Restart";
    if (marker) ++markerRows;
    // A row shows the status column, then one cell per trace column (a status row before
    // any description is loaded still has the one empty cell after the status).
    const int traceColumns = control->Table().ColumnCount() - kFirstTraceColumn;
    if (!marker && cells != 1 + std::max(traceColumns, 1)) {
      std::fprintf(stderr, "row '%.*s' has %d cells for %d trace columns, state %d\n",
                   static_cast<int>(line.size()), line.data(), cells, traceColumns,
                   control->ReadState());
      fuzz::Check(false, "a record row has every trace column");
    }
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  ManualEventLoop loop;
  ScriptedPrompts prompts;
  hosts::RegisterSpace space;
  // A small ring: wraps, overruns and whole-ring reloads come after a few records, and an
  // input costs a few records' decoding rather than hundreds, so that many more are tried.
  hosts::TraceProgramConfig config = hosts::PumpStationProgram();
  config.ringRecords = 16;
  hosts::TraceProgram program(space, config, loop.Clock());
  program.Install();
  program.WriteRecords(in.Byte() % 40);
  FuzzHost host;
  Control control(host, {loop, loop.Clock(), prompts});
  host.control = &control;
  control.SetResourcePath(VANTREL_EXAMPLES_DIR);
  control.SetSymbFile(VANTREL_EXAMPLES_DIR "/pumps_symbols.sym");
  control.SetPCDStatusCol(true);
  control.SetMaxRows(40);
  control.SetInterval(10);
  control.SetStartRegister(program.Config().startRegister);
  // A command word may ask for an export: it goes to the scratch directory, not the
  // directory the fuzzer runs in.
  control.SetExportFile((fuzz::Scratch() / "export.xls").string());
  control.Start();

  for (int step = 0; step < 400 && !in.Empty(); ++step) {
    const uint8_t op = in.Byte();
    switch (op % 8) {
      case 0:
      case 1:
      case 2:  // the controller answers what was asked
        if (host.pending) {
          const Request r = *host.pending;
          host.pending.reset();
          std::vector<int32_t> words = r.dataBlock ? space.ReadDataBlock(r.block, r.first, r.count)
                                                   : space.ReadRegisters(r.first, r.count);
          if (op & 0x80 && !words.empty()) words[in.Byte() % words.size()] = in.Word();
          if (op & 0x40 && !words.empty()) words.resize(in.Byte() % words.size());
          control.SetDataBlock(words);
        }
        break;
      case 3: {  // a block from nowhere
        std::vector<int32_t> words(in.Byte() % 40);
        for (int32_t& w : words)
          w = in.Word();
        control.SetDataBlock(words);
        break;
      }
      case 4:
        loop.Advance(1 + in.Byte() % 50);
        break;
      case 5:
        program.WriteRecords(in.Byte() % 40);
        break;
      case 6:
        if (op & 0x10) program.RestartCounter();
        if (op & 0x20) program.SetCommand(in.Byte() % 3 == 0 ? 1 : 0);
        if (op & 0x40) control.SetRunMode(static_cast<int16_t>(in.Byte() % 3));
        break;
      case 7:
        control.SetPCDStatus(in.Byte() % 10);
        break;
    }
    fuzz::Check(control.ReadState() >= 0 && control.ReadState() <= 4, "reading state 0..4");
    // Marker rows are added beyond the limit; record rows keep the table at it.
    fuzz::Check(control.Table().DataRowCount() <= 40 + host.markerRows, "the row limit holds");
  }
  return 0;
}
