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

std::string Examples() {
  const char* dir = std::getenv("VANTREL_EXAMPLES");
  return dir != nullptr ? dir : "examples";
}

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
  std::string error;
  const auto file = ReadProgramFile(Examples() + "/pumps_controller.ini", error);
  ASSERT_TRUE(file) << error;
  EXPECT_EQ(file->recordIntervalMs, 100);
  // Same header, same registers, same random seed: the same image, word for word.
  EXPECT_EQ(Image(file->program, 60), Image(PumpStationProgram(), 60));
}

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
  auto value = [&](size_t r, int64_t n) { return c.registers[r].Value(n, clock.Now(), random); };
  EXPECT_EQ(value(0, 42), 42);
  EXPECT_EQ(value(1, 1), 10);
  EXPECT_EQ(value(1, 4), 10);  // three steps, then round again
  EXPECT_EQ(value(1, 3), 12);
  EXPECT_EQ(value(2, 1), 150);  // a quarter period: the top of the sine
  EXPECT_EQ(value(2, 3), -50);
  for (int64_t n = 1; n <= 50; ++n) {
    EXPECT_GE(value(3, n), 0);
    EXPECT_LT(value(3, n), 16);
  }
  EXPECT_EQ(value(4, 1), 304150607);
  EXPECT_EQ(value(5, 1), 0x41204220);  // "A B" and a blank
  EXPECT_EQ(value(6, 1), -7);
  EXPECT_EQ(static_cast<uint32_t>(value(7, 1)), 0x1000000Fu);
  EXPECT_EQ(static_cast<uint32_t>(value(7, 2)), 0x2000000Fu);
}

TEST(ProgramFile, MistakesAreNamedWithTheirLine) {
  struct Case {
    const char* text;
    const char* error;
  };
  const Case cases[] = {
      {"[Registers]\n0=counter\n2=counter\n",
       "register 1 is missing: registers are numbered from 0 without gaps"},
      {"[Program]\nKey=PMP1\n",
       "no record registers: the [Registers] section needs 0=..., 1=... "
       "and so on"},
      {"[Registers]\n0=square 3\n",
       "line 2: register 0: unknown generator 'square' (counter, sawtooth, sine, random, "
       "timestamp, text, constant, fields)"},
      {"[Registers]\n0=sine 1 2\n", "line 2: register 0: sine takes 3 numbers"},
      {"[Registers]\n0=sawtooth 0\n", "line 2: register 0: sawtooth needs at least 1 step"},
      {"[Registers]\n0=sawtooth x\n", "line 2: register 0: sawtooth: 'x' is not a whole number"},
      {"[Registers]\n0=random 33\n", "line 2: register 0: random takes 1 to 32 bits"},
      {"[Registers]\n0=text TOOLONG\n",
       "line 2: register 0: text takes one word of 1 to 4 characters"},
      {"[Registers]\n0=text \"AB\n", "line 2: register 0: a quote is not closed"},
      {"[Registers]\n0=fields 30:4 counter\n",
       "line 2: register 0: field 30:4 does not fit in 32 bits"},
      {"[Registers]\n0=fields 0:4\n",
       "line 2: register 0: a field must read SHIFT:WIDTH GENERATOR, not '0:4'"},
      {"[Registers]\n0=fields 0:4 fields 0:1 counter\n",
       "line 2: register 0: fields cannot be nested"},
      {"[Registers]\n0=counter\n0=counter\n", "line 3: key 0 given twice"},
      {"[Registers]\nx=counter\n", "line 2: register keys are numbers from 0, not 'x'"},
      {"[Program]\nRing=5\n[Registers]\n0=counter\n", "line 2: unknown key Ring in [Program]"},
      {"[Program]\nRingRecords=1\n[Registers]\n0=counter\n",
       "line 2: RingRecords must be a whole number from 2 to 32767, not '1'"},
      {"[Program]\nFormat=VTL3\n[Registers]\n0=counter\n",
       "line 2: Format must be VTL1 or VTL2, not 'VTL3'"},
      {"[Program]\nBuffer=1000\n[Registers]\n0=counter\n",
       "line 2: Buffer must read R<register> or D<data block>, not '1000'"},
      {"[Program]\nKey=PUMPS\n[Registers]\n0=counter\n",
       "line 2: Key must have 1 to 4 characters, not 'PUMPS'"},
      {"Key=PMP1\n", "line 1: a key before the first section"},
      {"[Trace]\n", "line 1: unknown section [Trace] (expected [Program] or [Registers])"},
      {"[Program\n", "line 1: a section name must end with ]"},
      {"[Program]\nKey\n", "line 2: expected KEY=VALUE"},
  };
  for (const Case& c : cases) {
    std::string error;
    EXPECT_FALSE(ParseProgramFile(c.text, error)) << c.text;
    EXPECT_EQ(error, c.error) << c.text;
  }
  std::string error;
  EXPECT_FALSE(ReadProgramFile("/nonexistent/controller.ini", error));
  EXPECT_EQ(error, "cannot read /nonexistent/controller.ini");
}

}  // namespace
}  // namespace vantrel::hosts
