#include "vantrel/hosts/trace_program.h"

#include <gtest/gtest.h>

#include "vantrel/manual_clock.h"

namespace vantrel::hosts {
namespace {

TraceProgramConfig TwoRegisters(int32_t ring) {
  TraceProgramConfig c;
  c.ringRecords = ring;
  c.registers = {RegisterGenerator::Counter(), RegisterGenerator::Text("AB")};
  return c;
}

TEST(TraceProgram, InstallWritesThePointerAndTheHeader) {
  RegisterSpace space;
  ManualClock clock;
  TraceProgram program(space, TwoRegisters(4), clock);
  program.Install();
  EXPECT_EQ(space.Register(100), 1000);
  EXPECT_EQ(space.Register(1000), 0x56544C32);  // "VTL2"
  EXPECT_EQ(space.Register(1001), 0x504D5031);  // "PMP1"
  EXPECT_EQ(space.Register(1003), 16 + 2 * 4);
  EXPECT_EQ(space.Register(1007), 4) << "ring size in the counter area";
}

TEST(TraceProgram, RecordsGoIntoTheRingAndTheCountersFollow) {
  RegisterSpace space;
  ManualClock clock;
  TraceProgram program(space, TwoRegisters(4), clock);
  program.Install();
  program.WriteRecords(5);
  EXPECT_EQ(space.Register(1004), 5);  // running counter
  EXPECT_EQ(space.Register(1005), 1);  // next slot
  EXPECT_EQ(space.Register(1016), 5) << "record 5 overwrote slot 0";
  EXPECT_EQ(space.Register(1017), 0x41422020);  // "AB  "
  EXPECT_EQ(space.Register(1018), 2);
  EXPECT_EQ(program.RecordValues(3), (std::vector<int32_t>{3, 0x41422020}));
}

TEST(TraceProgram, DataBlockBufferIsAnnouncedWithD) {
  RegisterSpace space;
  ManualClock clock;
  TraceProgramConfig config = TwoRegisters(4);
  config.dataBlock = true;
  config.bufferStart = 4000;
  TraceProgram program(space, config, clock);
  program.Install();
  program.WriteRecords(1);
  EXPECT_EQ(space.Register(100), 0x00440000 | 4000);
  EXPECT_EQ(space.DataBlockWord(4000, 4), 1);
  EXPECT_EQ(space.DataBlockWord(4000, 16), 1);
}

TEST(TraceProgram, RestartPauseAndCommandWord) {
  RegisterSpace space;
  ManualClock clock;
  TraceProgram program(space, TwoRegisters(4), clock);
  program.Install();
  program.WriteRecords(3);
  program.RestartCounter();
  EXPECT_EQ(space.Register(1004), 0);
  EXPECT_EQ(space.Register(1005), 0);
  program.SetPaused(true);
  program.WriteRecords(2);
  EXPECT_EQ(program.RecordsWritten(), 3);
  program.SetCommand(9);
  EXPECT_EQ(space.Register(1008), 9);
}

TEST(Generators, ProduceTheirDocumentedValues) {
  std::mt19937 random(7);
  const DateTime now{2026, 11, 15, 14, 30, 25};
  EXPECT_EQ(RegisterGenerator::TimeStamp().Value(1, now, random), 1115143025);
  EXPECT_EQ(RegisterGenerator::Sawtooth(3, 10).Value(4, now, random), 10);
  EXPECT_EQ(RegisterGenerator::Sawtooth(3, 10).Value(6, now, random), 12);
  EXPECT_EQ(RegisterGenerator::Sine(100, 50, 4).Value(1, now, random), 150);
  EXPECT_EQ(RegisterGenerator::Sine(100, 50, 4).Value(3, now, random), -50);
  EXPECT_EQ(RegisterGenerator::Constant(-7).Value(9, now, random), -7);
  for (int i = 0; i < 50; ++i) {
    const int32_t bits = RegisterGenerator::RandomBits(3).Value(i, now, random);
    EXPECT_GE(bits, 0);
    EXPECT_LT(bits, 8);
  }
}

}  // namespace
}  // namespace vantrel::hosts
