// A control reading the virtual controller end to end, the host answering either inside the
// request event or on a later turn of the event loop, from registers or from a data block,
// after an 8-word or a 16-word header: every record the program writes is shown exactly
// once, in order. (Overruns, restarts and lost requests are in the scripted walk and the
// fault soak.)

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hosts/virtual_host.h"
#include "vantrel/control.h"

namespace vantrel::hosts {
namespace {

// How the host answers, whether the buffer lies in registers or in a data block, and its
// format (an 8-word or a 16-word header).
struct Setup {
  Answering answering;
  bool dataBlock;
  const char* format;
  const char* name;
};

TraceProgramConfig Program(const Setup& setup) {
  TraceProgramConfig c = NumberedRecords(20);
  c.dataBlock = setup.dataBlock;
  c.format = setup.format;
  return c;
}

class LiveTrace : public ::testing::TestWithParam<Setup>, protected VirtualPlant {
 protected:
  LiveTrace() : VirtualPlant(Program(GetParam()), GetParam().answering) {
    Connect(100, [](Control&) {});
  }
};

// Bursts of up to 19 records, all that a ring of 20 holds unread beside the write slot.
TEST_P(LiveTrace, EveryRecordIsShownOnceAndInOrder) {
  ASSERT_EQ(control->ReadState(), 3) << (host.errors.empty() ? "" : host.errors.front());
  for (int burst : {1, 3, 7, 19, 1, 5}) {
    program.WriteRecords(burst);
    loop.Advance(300);
  }
  // Each line: the number, then "ok" and two blanks.
  std::vector<std::string> expected;
  for (int n = 1; n <= 36; ++n)
    expected.push_back(" " + std::to_string(n) + "\tok  ");
  EXPECT_EQ(host.lines, expected);
  EXPECT_TRUE(host.errors.empty());
  EXPECT_EQ(control->Table().DataRowCount(), 36);
}

INSTANTIATE_TEST_SUITE_P(Answers, LiveTrace,
                         ::testing::Values(Setup{Answering::Inside, false, "VTL2", "Inside"},
                                           Setup{Answering::Later, false, "VTL2", "Later"},
                                           Setup{Answering::Inside, true, "VTL2", "DataBlock"},
                                           Setup{Answering::Later, true, "VTL2", "DataBlockLater"},
                                           Setup{Answering::Later, false, "VTL1", "ShortHeader"}),
                         [](const auto& setup) { return std::string(setup.param.name); });

}  // namespace
}  // namespace vantrel::hosts
