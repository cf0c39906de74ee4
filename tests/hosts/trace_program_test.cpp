#include "vantrel/hosts/trace_program.h"

#include <gtest/gtest.h>

#include "vantrel/manual_clock.h"

namespace vantrel::hosts {
namespace {

// The register images are compared word by word with the controller-side guide's worked
// example (tests/docs) and read by the live walks; what neither shows is tested here: a
// paused program writes nothing, and the program remembers what its ring holds and nothing
// older, so it can run for days.
TEST(TraceProgram, APausedProgramWritesNothingAndOnlyTheRingIsRemembered) {
  TraceProgramConfig config;
  config.ringRecords = 4;
  config.registers = {RegisterGenerator::Counter(), RegisterGenerator::Text("AB")};
  RegisterSpace space;
  ManualClock clock;
  TraceProgram program(space, config, clock);
  program.Install();
  program.WriteRecords(3);
  program.SetPaused(true);
  program.WriteRecords(2);
  EXPECT_EQ(space.Register(1004), 3);  // running counter
  program.SetPaused(false);
  program.WriteRecords(7);
  EXPECT_EQ(space.Register(1004), 10);
  for (int32_t n = 7; n <= 10; ++n)
    EXPECT_EQ(program.RecordValues(n), (std::vector<int32_t>{n, 0x41422020})) << n;
  EXPECT_TRUE(program.RecordValues(6).empty());
  EXPECT_TRUE(program.RecordValues(11).empty());
}

}  // namespace
}  // namespace vantrel::hosts
