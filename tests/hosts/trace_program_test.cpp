#include "vantrel/hosts/trace_program.h"

#include <gtest/gtest.h>

#include "vantrel/manual_clock.h"

namespace vantrel::hosts {
namespace {

// A program of two registers, a counter and the text "AB", in a ring of four records.
struct Installed {
  explicit Installed(bool dataBlock = false) : program(space, Config(dataBlock), clock) {
    program.Install();
  }
  static TraceProgramConfig Config(bool dataBlock) {
    TraceProgramConfig c;
    c.ringRecords = 4;
    c.registers = {RegisterGenerator::Counter(), RegisterGenerator::Text("AB")};
    if (dataBlock) {
      c.dataBlock = true;
      c.bufferStart = 4000;
    }
    return c;
  }
  RegisterSpace space;
  ManualClock clock;
  TraceProgram program;
};

TEST(TraceProgram, InstallWritesThePointerAndTheHeader) {
  Installed p;
  EXPECT_EQ(p.space.Register(100), 1000);
  EXPECT_EQ(p.space.Register(1000), 0x56544C32);  // "VTL2"
  EXPECT_EQ(p.space.Register(1001), 0x504D5031);  // "PMP1"
  EXPECT_EQ(p.space.Register(1003), 16 + 2 * 4);
  EXPECT_EQ(p.space.Register(1007), 4) << "ring size in the counter area";
}

TEST(TraceProgram, RecordsGoIntoTheRingAndTheCountersFollow) {
  Installed p;
  p.program.WriteRecords(5);
  EXPECT_EQ(p.space.Register(1004), 5);  // running counter
  EXPECT_EQ(p.space.Register(1005), 1);  // next slot
  EXPECT_EQ(p.space.Register(1016), 5) << "record 5 overwrote slot 0";
  EXPECT_EQ(p.space.Register(1017), 0x41422020);  // "AB  "
  EXPECT_EQ(p.space.Register(1018), 2);
  EXPECT_EQ(p.program.RecordValues(3), (std::vector<int32_t>{3, 0x41422020}));
}

TEST(TraceProgram, DataBlockBufferIsAnnouncedWithD) {
  Installed p(true);
  p.program.WriteRecords(1);
  EXPECT_EQ(p.space.Register(100), 0x00440000 | 4000);
  EXPECT_EQ(p.space.DataBlockWord(4000, 4), 1);
  EXPECT_EQ(p.space.DataBlockWord(4000, 16), 1);
}

TEST(TraceProgram, RestartPauseAndCommandWord) {
  Installed p;
  p.program.WriteRecords(3);
  p.program.RestartCounter();
  EXPECT_EQ(p.space.Register(1004), 0);
  EXPECT_EQ(p.space.Register(1005), 0);
  p.program.SetPaused(true);
  p.program.WriteRecords(2);
  EXPECT_EQ(p.program.RecordsWritten(), 3);
  p.program.SetCommand(9);
  EXPECT_EQ(p.space.Register(1008), 9);
}

}  // namespace
}  // namespace vantrel::hosts
