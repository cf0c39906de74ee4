#pragma once
// A host for tests: records every event the control raises and, when given a register
// image, answers read requests from it (inside the event, or later on request).

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "vantrel/control.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel::testing {

struct RecordedEvent {
  std::string name;
  std::vector<int32_t> args;
  std::string text;
  bool operator==(const RecordedEvent&) const = default;
};

// Registers and data blocks of a controller, as signed 32-bit words.
struct RegisterImage {
  std::map<int32_t, int32_t> registers;
  std::map<int32_t, std::map<int32_t, int32_t>> dataBlocks;
  std::vector<int32_t> Read(int32_t first, int32_t count) const;
  std::vector<int32_t> ReadDB(int32_t block, int32_t offset, int32_t count) const;
};

class RecordingHost : public ControlEvents {
 public:
  enum class Answer { Never, Inside, Later };

  Control* control = nullptr;
  RegisterImage image;
  Answer answer = Answer::Never;
  std::vector<RecordedEvent> events;

  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    events.push_back({"ReadPCDReg", {RegisterNumber, NumberToRead}, {}});
    Deliver(image.Read(RegisterNumber, NumberToRead));
  }
  void ReadPCDDB(int16_t DBNumber, int16_t DBOffset, int16_t NumberToRead) override {
    events.push_back({"ReadPCDDB", {DBNumber, DBOffset, NumberToRead}, {}});
    Deliver(image.ReadDB(DBNumber, DBOffset, NumberToRead));
  }
  void ModulError(int16_t ErrType, std::string_view ErrMessage) override {
    events.push_back({"ModulError", {ErrType}, std::string(ErrMessage)});
  }
  void OutputLine(std::string_view DataLine) override {
    events.push_back({"OutputLine", {}, std::string(DataLine)});
  }
  void Status(int16_t ReadStatus) override { events.push_back({"Status", {ReadStatus}, {}}); }
  void PCDCmd(int16_t Cmd) override { events.push_back({"PCDCmd", {Cmd}, {}}); }
  void NewExportFile() override { events.push_back({"NewExportFile", {}, {}}); }

  // Answers the read requests held back with Answer::Later; returns how many.
  int AnswerPending();
  std::vector<RecordedEvent> Named(const std::string& name) const;
  std::vector<int16_t> Statuses() const;
  std::vector<std::string> Errors() const;
  void ClearEvents() { events.clear(); }

 private:
  void Deliver(std::vector<int32_t> block);
  std::vector<std::vector<int32_t>> pending_;
};

// Everything a control needs, ready to construct one.
struct ControlFixture {
  ManualEventLoop loop;
  ScriptedPrompts prompts;
  RecordingHost host;
  std::optional<Control> control;

  ControlFixture() { Create(); }
  void Create(Container* container = nullptr);
  Control& operator*() { return *control; }
  Control* operator->() { return &*control; }
};

// Packs four characters into a word, the first character in the most significant byte.
int32_t Packed(const char (&text)[5]);

}  // namespace vantrel::testing
