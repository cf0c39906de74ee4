// A headless host: one control whose reads are answered from a register image holding a
// valid "VTL2" buffer. Prints every Status, ModulError and OutputLine event as it happens.

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "vantrel/control.h"
#include "vantrel/encoding.h"
#include "vantrel/poll_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace {

int32_t Packed(const char* text) {
  uint32_t word = 0;
  for (int i = 0; i < 4; ++i)
    word = (word << 8) | static_cast<unsigned char>(text[i]);
  return static_cast<int32_t>(word);
}

// Control characters in messages are shown as escapes so that each event stays one line.
std::string Cp1252ToUtf8Line(std::string_view cp1252) {
  std::string out;
  for (char c : vantrel::Cp1252ToUtf8(cp1252)) {
    if (c == '\r')
      out += "\\r";
    else if (c == '\n')
      out += "\\n";
    else if (c == '\t')
      out += "\\t";
    else
      out.push_back(c);
  }
  return out;
}

class DemoHost : public vantrel::ControlEvents {
 public:
  vantrel::Control* control = nullptr;
  std::map<int32_t, int32_t> registers;

  void ReadPCDReg(int16_t first, int16_t count) override {
    std::vector<int32_t> block;
    for (int32_t i = 0; i < count; ++i)
      block.push_back(registers[first + i]);
    control->SetDataBlock(block);
  }
  void Status(int16_t state) override {
    std::printf("Status %d  %s\n", state,
                control ? control->GetSurface().status.caption.c_str() : "");
    std::fflush(stdout);
  }
  void ModulError(int16_t type, std::string_view message) override {
    std::printf("ModulError %d  %s\n", type, Cp1252ToUtf8Line(message).c_str());
    std::fflush(stdout);
  }
  void OutputLine(std::string_view line) override {
    std::printf("%s\n", Cp1252ToUtf8Line(line).c_str());
    std::fflush(stdout);
  }
};

}  // namespace

int main(int argc, char** argv) {
  const int seconds = argc > 1 ? std::atoi(argv[1]) : 3;
  vantrel::PollEventLoop loop;
  vantrel::SystemClock clock;
  vantrel::ScriptedPrompts prompts;
  DemoHost host;

  // Register 100 points at a "VTL2" buffer of 200 registers starting at register 1000.
  host.registers[100] = 1000;
  const int32_t header[] = {Packed("VTL2"), Packed("PMP1"), 1, 200};
  for (int i = 0; i < 4; ++i)
    host.registers[1000 + i] = header[i];

  vantrel::Control control(host, {loop, clock, prompts});
  host.control = &control;
  control.SetResourcePath("examples");
  control.SetStartRegister(100);
  control.SetInterval(500);
  control.Start();
  control.SetRunMode(2);
  loop.RunFor(std::chrono::seconds(seconds));
  std::printf("Stopped after %d s; state %d, %d records read.\n", seconds, control.ReadState(),
              control.RecordCount());
  return 0;
}
