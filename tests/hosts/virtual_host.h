#pragma once
// A host for end-to-end tests: a control reading a trace program's register space, answered
// inside the request event or later on the event loop (late, or not at all while its link is
// down, for the fault soak), and the description that decodes its records.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "description/cipher.h"
#include "support/temp_dir.h"
#include "vantrel/control.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel::hosts {

// Records of two registers: the record's running number and the text "ok".
inline TraceProgramConfig NumberedRecords(int32_t ring, int32_t counterStart = 0) {
  TraceProgramConfig c;
  c.key = "LIV1";
  c.version = 1;
  c.ringRecords = ring;
  c.counterStart = counterStart;
  c.registers = {RegisterGenerator::Counter(), RegisterGenerator::Text("ok")};
  return c;
}

// Descriptions load enciphered: write the plain text and encipher it beside itself.
inline void WriteDescription(const testing::TempDir& dir) {
  const std::string plain = dir.File("LIV1_live.vtl");
  std::ofstream(plain, std::ios::binary)
      << "[VANTREL]\r\nKey=LIV1\r\nVersion=1\r\nHeaderLenght=16\r\nCounterIndex=4\r\n"
         "RecordLenght=2\r\n[DRIVER]\r\nTitle=Live\r\nColumnWidth=900\r\n"
         "[REGISTER_0]\r\nLong=1,900,Number,%d\r\n[REGISTER_1]\r\nStrg=2,4,Text,%a\r\n";
  ASSERT_EQ(EncryptDescription(plain), "Cryptage successful !");
  std::filesystem::remove(plain);
}

enum class Answering { Inside, Later };

// Answers from the register space, inside the event or on a later turn of the event loop, as
// a network transport would: `delayMs` later, only the newest request (a real client drops
// superseded ones), and none while the link is `down`.
class VirtualHost : public ControlEvents {
 public:
  VirtualHost(RegisterSpace& space, ManualEventLoop& loop, Answering answering)
      : space_(space), loop_(loop), answering_(answering), courier_(loop.CreateTimer()) {
    courier_->SetInterval(1);
    courier_->SetTickHandler([this] {
      if (!pending_ || pending_->at > loop_.ElapsedMs()) return;
      const Pending p = std::move(*pending_);
      pending_.reset();
      if (p.generation == generation_ && !down) control->SetDataBlock(p.words);
    });
    courier_->SetEnabled(true);
  }

  Control* control = nullptr;
  std::vector<std::string> lines;
  std::vector<std::string> errors;
  std::vector<int16_t> commands;  // PCDCmd raised
  bool down = false;
  int delayMs = 0;

  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    Answer(space_.ReadRegisters(RegisterNumber, NumberToRead));
  }
  void ReadPCDDB(int16_t DBNumber, int16_t DBOffset, int16_t NumberToRead) override {
    Answer(space_.ReadDataBlock(DBNumber, DBOffset, NumberToRead));
  }
  void ModulError(int16_t ErrType, std::string_view ErrMessage) override {
    errors.push_back(std::to_string(ErrType) + ":" + std::string(ErrMessage));
  }
  void OutputLine(std::string_view DataLine) override { lines.emplace_back(DataLine); }
  void PCDCmd(int16_t command) override { commands.push_back(command); }

  // No read under way: nothing has been taken from the registers that is still to come.
  bool Idle() const { return !pending_; }

 private:
  // The words are those the controller holds when the request arrives.
  void Answer(std::vector<int32_t> words) {
    ++generation_;
    if (down) return;
    if (answering_ == Answering::Inside) control->SetDataBlock(words);
    if (answering_ == Answering::Later)
      pending_ = Pending{generation_, loop_.ElapsedMs() + delayMs, std::move(words)};
  }

  struct Pending {
    uint64_t generation;
    int64_t at;
    std::vector<int32_t> words;
  };
  RegisterSpace& space_;
  ManualEventLoop& loop_;
  Answering answering_;
  std::unique_ptr<Timer> courier_;
  uint64_t generation_ = 0;
  std::optional<Pending> pending_;
};

// A trace program, a host answering from its registers, and a control that reads them with
// the records' description from a folder of its own.
struct VirtualPlant {
  VirtualPlant(const TraceProgramConfig& config, Answering answering)
      : program(space, config, loop.Clock()), host(space, loop, answering) {
    WriteDescription(dir);
    program.Install();
  }

  // Creates the control, lets `configure` set further properties, and starts reading in run
  // mode 2 with a poll every `interval` ms.
  template <typename Configure>
  void Connect(int32_t interval, Configure configure) {
    control.emplace(host, ControlServices{loop, loop.Clock(), prompts});
    host.control = &*control;
    control->SetResourcePath(dir.Path().string());
    control->SetStartRegister(program.Config().startRegister);
    control->SetInterval(interval);
    configure(*control);
    control->Start();
    loop.Advance(5);
    control->SetRunMode(2);
    loop.Advance(5);
  }

  testing::TempDir dir;
  ManualEventLoop loop;
  ScriptedPrompts prompts;
  RegisterSpace space;
  TraceProgram program;
  VirtualHost host;
  std::optional<Control> control;
};

}  // namespace vantrel::hosts
