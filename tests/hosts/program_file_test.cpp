#include "vantrel/hosts/program_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <tuple>

#include "vantrel/hosts/pump_station.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/manual_clock.h"

namespace vantrel::hosts {
namespace {

// The registers a program has written after `count` records: start register, header, ring.
std::vector<int32_t> Image(const TraceProgramConfig& config, int count) {
  RegisterSpace space;
  ManualClock clock;
  TraceProgram program(space, config, clock);
  program.Install();
  program.WriteRecords(count);
  return space.ReadRegisters(0, 1400);
}

TEST(ProgramFile, TheBundledPumpStationIsTheBuiltInProgram) {
  const char* examples = std::getenv("VANTREL_EXAMPLES");
  std::string error;
  const auto file = ReadProgramFile(
      std::string(examples != nullptr ? examples : "examples") + "/pumps_controller.ini", error);
  ASSERT_TRUE(file) << error;
  EXPECT_EQ(file->recordIntervalMs, 100);
  // Same header, same registers, same random seed: the same image, word for word.
  EXPECT_EQ(Image(file->program, 60), Image(PumpStationProgram(), 60));
}

// The generators the bundled programs and the guides do not use, or not in these forms.
TEST(ProgramFile, EveryGeneratorAndProgramKey) {
  std::string error;
  const auto file = ParseProgramFile(
      "; comment\r\n[program]\r\nFORMAT=vtl1\r\nkey=AB\r\nVersion=-2\r\nBuffer=D12\r\n"
      "StartRegister=7\r\nRingRecords=3\r\nCounterIndex=2\r\nCounterStart=-5\r\n"
      "ExportIndex=9\r\nStringLengths=4\r\nRecordInterval=250\r\n"
      "[Registers]\r\n0=counter\r\n1 = sawtooth 3 10\r\n2=sine 100 50 4\r\n3=random 4\r\n"
      "4=timestamp\r\n5=text \"A B\"\r\n6=constant -7\r\n7=fields 0:4 constant 15 | 28:4 "
      "sawtooth 2 1\r\n",
      error);
  ASSERT_TRUE(file) << error;
  const TraceProgramConfig& c = file->program;
  EXPECT_EQ(std::tie(c.format, c.key, c.version, c.dataBlock, c.bufferStart, c.startRegister,
                     c.ringRecords, c.counterIndex, c.counterStart, c.exportIndex, c.stringLengths,
                     file->recordIntervalMs),
            std::make_tuple("VTL1", "AB", -2, true, 12, 7, 3, 2, -5, 9, 4, 250));
  ASSERT_EQ(c.registers.size(), 8u);
  ManualClock clock({2026, 3, 4, 15, 6, 7, 0});
  std::mt19937 random(1);
  std::vector<uint32_t> values;
  for (const auto& [r, n] : std::vector<std::pair<size_t, int64_t>>{
           {0, 42}, {1, 1}, {1, 3}, {1, 4}, {2, 1}, {2, 3}, {4, 1}, {5, 1}, {6, 1}, {7, 1}, {7, 2}})
    values.push_back(static_cast<uint32_t>(c.registers[r].Value(n, clock.Now(), random)));
  // Sawtooth: three steps from 10, then round again; sine: the top and the bottom.
  EXPECT_EQ(values,
            (std::vector<uint32_t>{42, 10, 12, 10, 150, static_cast<uint32_t>(-50), 304150607,
                                   0x41204220, static_cast<uint32_t>(-7), 0x1000000F, 0x2000000F}));
  for (int64_t n = 1; n <= 50; ++n)
    EXPECT_LT(static_cast<uint32_t>(c.registers[3].Value(n, clock.Now(), random)), 16u);
}

TEST(ProgramFile, MistakesAreNamedWithTheirLine) {
  // A register line and what it is told; the file has it on line 2.
  const std::pair<const char*, const char*> registers[] = {
      {"0=square 3",
       "register 0: unknown generator 'square' (counter, sawtooth, sine, random, timestamp, "
       "text, constant, fields)"},
      {"0=sine 1 2", "register 0: sine takes 3 numbers"},
      {"0=sawtooth 0", "register 0: sawtooth needs at least 1 step"},
      {"0=sawtooth x", "register 0: sawtooth: 'x' is not a whole number"},
      {"0=random 33", "register 0: random takes 1 to 32 bits"},
      {"0=text TOOLONG", "register 0: text takes one word of 1 to 4 characters"},
      {"0=text \"AB", "register 0: a quote is not closed"},
      {"0=fields 30:4 counter", "register 0: field 30:4 does not fit in 32 bits"},
      {"0=fields 0:4", "register 0: a field must read SHIFT:WIDTH GENERATOR, not '0:4'"},
      {"0=fields 0:4 fields 0:1 counter", "register 0: fields cannot be nested"},
      {"x=counter", "register keys are numbers from 0, not 'x'"}};
  // A [Program] line and what it is told, likewise on line 2.
  const std::pair<const char*, const char*> keys[] = {
      {"Ring=5", "unknown key Ring in [Program]"},
      {"RingRecords=1", "RingRecords must be a whole number from 2 to 32767, not '1'"},
      {"Format=VTL3", "Format must be VTL1 or VTL2, not 'VTL3'"},
      {"Buffer=1000", "Buffer must read R<register> or D<data block>, not '1000'"},
      {"Key=PUMPS", "Key must have 1 to 4 characters, not 'PUMPS'"},
      {"Key", "expected KEY=VALUE"}};
  std::vector<std::pair<std::string, std::string>> cases = {
      {"[Registers]\n0=counter\n2=counter\n",
       "register 1 is missing: registers are numbered from 0 without gaps"},
      {"[Program]\nKey=PMP1\n",
       "no record registers: the [Registers] section needs 0=..., 1=... and so on"},
      {"[Registers]\n0=counter\n0=counter\n", "line 3: key 0 given twice"},
      {"Key=PMP1\n", "line 1: a key before the first section"},
      {"[Trace]\n", "line 1: unknown section [Trace] (expected [Program] or [Registers])"},
      {"[Program\n", "line 1: a section name must end with ]"}};
  for (const auto& [line, says] : registers)
    cases.emplace_back("[Registers]\n" + std::string(line) + "\n", "line 2: " + std::string(says));
  for (const auto& [line, says] : keys)
    cases.emplace_back("[Program]\n" + std::string(line) + "\n[Registers]\n0=counter\n",
                       "line 2: " + std::string(says));
  for (const auto& [text, says] : cases) {
    std::string error;
    EXPECT_FALSE(ParseProgramFile(text, error)) << text;
    EXPECT_EQ(error, says) << text;
  }
  std::string error;
  EXPECT_FALSE(ReadProgramFile("/nonexistent/controller.ini", error));
  EXPECT_EQ(error, "cannot read /nonexistent/controller.ini");
}

}  // namespace
}  // namespace vantrel::hosts
