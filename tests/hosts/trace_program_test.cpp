#include "vantrel/hosts/trace_program.h"

#include <gtest/gtest.h>

#include "vantrel/manual_clock.h"

namespace vantrel::hosts {
namespace {

// A ring in registers is compared word by word with the controller-side guide's worked
// example (tests/docs); what that example does not show is tested here.

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

TEST(TraceProgram, DataBlockBufferIsAnnouncedWithD) {
  Installed p(true);
  p.program.WriteRecords(1);
  EXPECT_EQ(p.space.Register(100), 0x00440000 | 4000);
  EXPECT_EQ(p.space.DataBlockWord(4000, 4), 1);
  EXPECT_EQ(p.space.DataBlockWord(4000, 16), 1);
}

TEST(TraceProgram, APausedProgramWritesNothingUntilResumed) {
  Installed p;
  p.program.WriteRecords(3);
  p.program.SetPaused(true);
  p.program.WriteRecords(2);
  EXPECT_EQ(p.space.Register(1004), 3);  // running counter
  p.program.SetPaused(false);
  p.program.WriteRecords(1);
  EXPECT_EQ(p.space.Register(1004), 4);
}

// The program remembers what its ring holds and nothing older, so it can run for days.
TEST(TraceProgram, OnlyTheRecordsTheRingHoldsAreRemembered) {
  Installed p;
  p.program.WriteRecords(10);
  for (int64_t n = 7; n <= 10; ++n) {
    const std::vector<int32_t> values = p.program.RecordValues(n);
    ASSERT_EQ(values.size(), 2u) << n;
    EXPECT_EQ(values[0], n);
  }
  EXPECT_TRUE(p.program.RecordValues(6).empty());
  EXPECT_TRUE(p.program.RecordValues(11).empty());
}

}  // namespace
}  // namespace vantrel::hosts
