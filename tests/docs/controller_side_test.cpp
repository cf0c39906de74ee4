// The worked example of the controller-side guide: the virtual controller runs the guide's
// trace program step by step while a control reads it, and every register image and every
// row block of the guide must be what this run produces.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "description/cipher.h"
#include "support/temp_dir.h"
#include "vantrel/control.h"
#include "vantrel/hosts/program_file.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

const std::string kSource = VANTREL_SOURCE_DIR;
const std::string kGuide = kSource + "/docs/controller-side.md";
const std::string kExample = kSource + "/examples/reference/controller/";

// One step of the guide: what the program does, then the blocks that follow it.
struct Step {
  int line = 0;
  std::string action;  // "install", "records N", "restart", "command N"
  std::string image;   // the register image block
  std::string rows;    // the rows block, when the guide shows one
};

std::vector<Step> ReadSteps() {
  std::ifstream in(kGuide);
  std::vector<Step> steps;
  std::string* block = nullptr;  // the block being collected
  std::string* next = nullptr;   // the block the next fence opens
  int lineNumber = 0;
  for (std::string line; std::getline(in, line);) {
    ++lineNumber;
    if (block != nullptr) {
      if (line.rfind("```", 0) == 0) {
        block = nullptr;
      } else {
        *block += line + "\n";
      }
      continue;
    }
    const size_t step = line.find("<!-- step: ");
    if (step != std::string::npos) {
      const size_t end = line.find(" -->", step);
      steps.push_back({lineNumber, line.substr(step + 11, end - step - 11), {}, {}});
      next = &steps.back().image;
    } else if (line.find("<!-- rows -->") != std::string::npos && !steps.empty()) {
      next = &steps.back().rows;
    } else if (line.rfind("```", 0) == 0 && next != nullptr) {
      block = next;
      next = nullptr;
    }
  }
  return steps;
}

// What each word of the buffer holds, as the guide labels it.
std::string Label(int word, const hosts::TraceProgram& program) {
  static const char* const kHeader[] = {
      "format",       "buffer key", "version",       "buffer length", "records written",
      "write index",  "(not used)", "ring size",     "command",       "(not used)",
      "export index", "(not used)", "string lengths"};
  if (word < program.HeaderLength()) {
    return "word " + std::to_string(word) + ": " +
           (word < static_cast<int>(std::size(kHeader)) ? kHeader[word] : "(not used)");
  }
  const int slot = (word - program.HeaderLength()) / program.RecordLength();
  const int reg = (word - program.HeaderLength()) % program.RecordLength();
  return "slot " + std::to_string(slot) + ", register " + std::to_string(reg);
}

std::string Image(const hosts::RegisterSpace& space, const hosts::TraceProgram& program) {
  const hosts::TraceProgramConfig& c = program.Config();
  char line[128];
  std::snprintf(line, sizeof line, "R %-5d %-11d start register\n", c.startRegister,
                space.Register(c.startRegister));
  std::string image = line;
  const int words = program.HeaderLength() + program.RecordLength() * c.ringRecords;
  for (int w = 0; w < words; ++w) {
    const int32_t value = space.Register(c.bufferStart + w);
    std::string shown = std::to_string(value);
    std::string label = Label(w, program);
    if (w == 0 || w == 1) {  // packed characters: in hexadecimal, and as text
      std::snprintf(line, sizeof line, "0x%08X", static_cast<uint32_t>(value));
      shown = line;
      label += " \"";
      for (int shift = 24; shift >= 0; shift -= 8)
        label += static_cast<char>((static_cast<uint32_t>(value) >> shift) & 0xFF);
      label += "\"";
    }
    std::snprintf(line, sizeof line, "R %-5d %-11s %s\n", c.bufferStart + w, shown.c_str(),
                  label.c_str());
    image += line;
  }
  return image;
}

// A host that answers every read at once from the controller's registers.
struct Host : ControlEvents {
  hosts::RegisterSpace* space = nullptr;
  Control* control = nullptr;
  std::string rows;
  std::vector<std::string> errors;

  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    control->SetDataBlock(space->ReadRegisters(RegisterNumber, NumberToRead));
  }
  void OutputLine(std::string_view DataLine) override {
    std::string line(DataLine);
    for (size_t tab = line.find('\t'); tab != std::string::npos; tab = line.find('\t', tab))
      line.replace(tab, 1, " | ");
    rows += line + "\n";
  }
  void ModulError(int16_t, std::string_view ErrMessage) override {
    errors.emplace_back(ErrMessage);
  }
};

TEST(ControllerSideGuide, TheWorkedExampleIsWhatTheVirtualControllerWrites) {
  const std::vector<Step> steps = ReadSteps();
  ASSERT_GE(steps.size(), 4u) << kGuide;

  std::string error;
  const auto file = hosts::ReadProgramFile(kExample + "DEMO_ring.ini", error);
  ASSERT_TRUE(file.has_value()) << error;
  // The control finds the enciphered description in its resource directory.
  testing::TempDir resources;
  std::filesystem::copy_file(kExample + "DEMO_ring.vtl", resources.File("DEMO_ring.vtl"));
  ASSERT_EQ(EncryptDescription(resources.File("DEMO_ring.vtl")), "Cryptage successful !");

  ManualEventLoop loop;
  ScriptedPrompts prompts;
  hosts::RegisterSpace space;
  hosts::TraceProgram program(space, file->program, loop.Clock());
  Host host;
  host.space = &space;
  Control control(host, {loop, loop.Clock(), prompts});
  host.control = &control;
  control.InitProperties();
  control.SetStartRegister(file->program.startRegister);
  control.SetResourcePath(resources.Path().string());
  control.SetPCDStatusCol(true);
  control.SetPCDStatus(2);

  for (const Step& step : steps) {
    SCOPED_TRACE("controller-side.md line " + std::to_string(step.line) + ": " + step.action);
    host.rows.clear();
    if (step.action == "install") {
      program.Install();
      control.Start();
      control.SetRunMode(2);
    } else if (step.action.rfind("records ", 0) == 0) {
      program.WriteRecords(std::stoi(step.action.substr(8)));
    } else if (step.action == "restart") {
      program.RestartCounter();
    } else if (step.action == "command 1") {
      // The guide says the table is cleared: it must have rows to clear.
      EXPECT_GT(control.Table().DataRowCount(), 0);
      program.SetCommand(1);
    } else {
      FAIL() << "unknown step";
    }
    // One poll of the counters, and of the records when there are new ones.
    loop.Advance(control.Interval());
    // On a difference the block is printed as the guide should show it.
    const std::string image = Image(space, program);
    EXPECT_EQ(image, step.image) << "register image:\n" << image;
    EXPECT_EQ(host.rows, step.rows) << "rows:\n" << host.rows;
    if (step.action == "command 1") {
      EXPECT_EQ(control.Table().DataRowCount(), 0);
    }
  }
  EXPECT_TRUE(host.errors.empty()) << host.errors.front();
}

}  // namespace
}  // namespace vantrel
