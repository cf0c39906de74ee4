// A control reading the virtual controller end to end: every record the program writes
// is shown exactly once, in order, or counted in a "Miss " row; restarts are marked. The
// host answers either inside the request event or on a later turn of the event loop.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "hosts/virtual_host.h"
#include "support/temp_dir.h"
#include "vantrel/control.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel::hosts {
namespace {

constexpr int kRing = 20;

// What the rows account for: record numbers shown, records counted missing, restarts.
struct Tally {
  std::vector<int64_t> shown;
  int64_t missing = 0;
  int restarts = 0;
};

// Lines carry the controller status column first: "Miss <n>" on a miss row, "Restart"
// on a restart row.
Tally Count(const std::vector<std::string>& lines) {
  Tally t;
  for (const std::string& line : lines) {
    const size_t tab = line.find('\t');
    const std::string first = line.substr(0, tab);
    const std::string rest = tab == std::string::npos ? std::string() : line.substr(tab + 1);
    if (first.rfind("Miss ", 0) == 0) {
      t.missing += std::stoll(first.substr(5));
    } else if (first == "Restart") {
      ++t.restarts;
    } else {
      t.shown.push_back(std::stoll(rest.substr(0, rest.find('\t'))));
    }
  }
  return t;
}

class LiveTrace : public ::testing::TestWithParam<Answering>, protected VirtualPlant {
 protected:
  LiveTrace() : VirtualPlant(NumberedRecords(kRing), GetParam()) {
    Connect(100, [](Control& c) { c.SetPCDStatusCol(true); });
  }

  // Lets the control poll until it has caught up with the program.
  void Poll(int intervals = 3) { loop.Advance(100 * intervals); }
};

TEST_P(LiveTrace, EveryRecordIsShownOnceAndInOrder) {
  ASSERT_EQ(control->ReadState(), 3) << (host.errors.empty() ? "" : host.errors.front());
  for (int burst : {1, 3, 7, 19, 1, 5}) {
    program.WriteRecords(burst);
    Poll();
  }
  const Tally t = Count(host.lines);
  ASSERT_EQ(t.shown.size(), 36u);
  for (size_t i = 0; i < t.shown.size(); ++i)
    EXPECT_EQ(t.shown[i], static_cast<int64_t>(i + 1));
  EXPECT_EQ(t.missing, 0);
  EXPECT_TRUE(host.errors.empty());
  EXPECT_EQ(control->Table().DataRowCount(), 36);
}

TEST_P(LiveTrace, AnOverrunIsCountedInAMissRow) {
  program.WriteRecords(4);
  Poll();
  program.WriteRecords(kRing + 13);
  Poll();
  program.WriteRecords(2);
  Poll();
  const Tally t = Count(host.lines);
  EXPECT_EQ(static_cast<int64_t>(t.shown.size()) + t.missing, program.RecordsWritten());
  EXPECT_GT(t.missing, 0);
  // What is shown after the gap is the newest records, still in order.
  for (size_t i = 1; i < t.shown.size(); ++i)
    EXPECT_LT(t.shown[i - 1], t.shown[i]);
  EXPECT_EQ(t.shown.back(), program.RecordsWritten());
  EXPECT_TRUE(host.errors.empty());
}

TEST_P(LiveTrace, ACounterResetIsMarkedAndReadingGoesOn) {
  program.WriteRecords(6);
  Poll();
  program.RestartCounter();
  program.WriteRecords(2);
  Poll();
  program.WriteRecords(3);
  Poll();
  const Tally t = Count(host.lines);
  EXPECT_EQ(t.restarts, 1);
  // The records written since the reset are all read once the counter moves on.
  EXPECT_EQ(t.shown.size(), 11u);
  EXPECT_EQ(t.shown.back(), program.RecordsWritten());
  EXPECT_TRUE(host.errors.empty());
}

TEST_P(LiveTrace, APausedProgramAddsNoRows) {
  program.WriteRecords(3);
  Poll();
  program.SetPaused(true);
  program.WriteRecords(5);
  Poll(10);
  EXPECT_EQ(Count(host.lines).shown.size(), 3u);
  program.SetPaused(false);
  program.WriteRecords(1);
  Poll();
  EXPECT_EQ(Count(host.lines).shown.back(), program.RecordsWritten());
}

INSTANTIATE_TEST_SUITE_P(Answers, LiveTrace, ::testing::Values(Answering::Inside, Answering::Later),
                         [](const auto& answers) {
                           return answers.param == Answering::Inside ? "Inside" : "Later";
                         });

// A host that stops answering and comes back: the control asks again and loses nothing.
class LiveTraceRecovery : public LiveTrace {};

TEST_P(LiveTraceRecovery, UnansweredRequestsAreAskedAgain) {
  Poll();
  program.WriteRecords(2);
  host.silent = true;
  loop.Advance(1000);
  host.silent = false;
  program.WriteRecords(3);
  loop.Advance(2000);
  const Tally t = Count(host.lines);
  ASSERT_EQ(t.shown.size(), 5u);
  EXPECT_EQ(t.shown.back(), 5);
  EXPECT_TRUE(host.errors.empty());
}

INSTANTIATE_TEST_SUITE_P(Later, LiveTraceRecovery, ::testing::Values(Answering::Later));

}  // namespace
}  // namespace vantrel::hosts
