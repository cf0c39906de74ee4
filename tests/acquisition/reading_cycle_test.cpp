// The reading cycle on its own: which records a poll of the counter area plans to fetch and
// where they lie, what it reports on the way, and the simulated controller's ring.

#include "acquisition/reading_cycle.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/recording_host.h"

namespace vantrel {
namespace {

constexpr int16_t kHeader = 16;
constexpr int16_t kRecordLength = 3;

// Runs a cycle over a "VTL2" buffer at register 1000 and writes down what it hands on.
struct CycleFixture : ReadingCycleOwner {
  bool simulation = false;
  int16_t startRegister = 100;
  TraceDescription description;
  ReadingCycle cycle{*this, {simulation, startRegister}, description};
  std::vector<std::string> reports;  // misses, restarts, errors

  void ReadRegisters(int16_t, int16_t) override {}
  void ReadDataBlock(int16_t, int16_t, int16_t) override {}
  void ReadStateChanged(int16_t, std::string_view) override {}
  void HeaderArrived() override {}
  bool LoadDescription(std::string&) override {
    description.RecordLength = kRecordLength;
    return true;
  }
  bool DecodeRecord(std::span<const int32_t> registers, size_t first) override {
    return first + kRecordLength <= registers.size();
  }
  void RecordsMissed(int64_t count) override { reports.push_back("Miss " + std::to_string(count)); }
  void CounterRestarted() override { reports.emplace_back("Restart"); }
  void CommandChanged(int32_t) override {}
  void RaiseError(int16_t type, std::string_view message) override {
    reports.push_back(std::to_string(type) + ":" + std::string(message));
  }
  void StopOnFailure(int16_t type, std::string_view message) override {
    reports.push_back("stop " + std::to_string(type) + ":" + std::string(message));
  }
  void ResumeRefresh() override {}

  CycleFixture() {
    cycle.SetState(kStateWaitStart);
    cycle.TakeDataBlock(std::vector<int32_t>{1000});
    std::vector<int32_t> header(kHeader, 0);
    header[0] = testing::Packed("VTL2");
    header[1] = testing::Packed("KEY1");
    header[3] = 100;
    cycle.TakeDataBlock(header);
  }
  // One poll of the counter area; true when records are to be fetched.
  bool Poll(int32_t counter, int32_t writeIndex, int32_t capacity = 10, int32_t command = 0) {
    cycle.TakeDataBlock(std::vector<int32_t>{counter, writeIndex, 0, capacity, command, 0, 0});
    return cycle.State() == kStateLoading;
  }
  // The planned records arrive.
  void Load() {
    cycle.TakeDataBlock(
        std::vector<int32_t>(static_cast<size_t>(cycle.Buffer().RecordsToRead * kRecordLength)));
  }
  // A first poll and its records, which leaves the walk at `counter` and `writeIndex`.
  void Seen(int32_t counter, int32_t writeIndex) {
    if (Poll(counter, writeIndex)) Load();
    reports.clear();
  }
  int Slot() const { return (cycle.Buffer().RecordReadOffset - kHeader) / kRecordLength; }
};

// A poll of a ring of ten plans the records to fetch and the slot they start at (-1: not
// looked at). The slot being written is never read, so a ring of ten holds nine unread
// records: the tenth new one means the oldest was overwritten, and an overrun reports the
// loss and reloads the ring. The counter counts in 31 bits.
TEST(ReadingCycle, APollPlansTheNewRecordsFromTheirSlot) {
  struct Case {
    const char* what;
    bool firstPoll;
    int32_t seenCounter, seenWriteIndex, counter, writeIndex;
    int16_t toRead;
    int slot;
    std::vector<std::string> reports;
  };
  for (const Case& c : {
           Case{"the slots written so far", true, 0, 0, 3, 3, 3, 0, {}},
           Case{"a wrapped ring at the first poll", true, 0, 0, 25, 5, 10, 0, {}},
           Case{"new records before the write slot", false, 20, 1, 23, 4, 3, 1, {}},
           Case{"an overrun", false, 20, 0, 40, 4, 10, 0, {"Miss 11"}},
           Case{"nine new records", false, 20, 5, 29, 4, 5, 5, {}},
           Case{"ten new records", false, 20, 5, 30, 5, 10, -1, {"Miss 1"}},
           Case{"a negative counter", false, 2147483640, 0, -1, 7, 7, -1, {}},
       }) {
    SCOPED_TRACE(c.what);
    CycleFixture f;
    if (!c.firstPoll) f.Seen(c.seenCounter, c.seenWriteIndex);
    EXPECT_TRUE(f.Poll(c.counter, c.writeIndex));
    EXPECT_EQ(f.cycle.Buffer().RecordsToRead, c.toRead);
    if (c.slot >= 0) {
      EXPECT_EQ(f.Slot(), c.slot);
    }
    EXPECT_EQ(f.reports, c.reports);
  }
}

TEST(ReadingCycle, ACounterGoingBackIsARestartAndTheWalkBeginsAgain) {
  CycleFixture f;
  f.Seen(20, 5);
  EXPECT_FALSE(f.Poll(10, 3));
  EXPECT_EQ(f.reports, std::vector<std::string>{"Restart"});
  EXPECT_EQ(f.cycle.Walk().RecordNumber, 0);
  EXPECT_TRUE(f.Poll(12, 5)) << "counted from 0 again";
  EXPECT_EQ(f.cycle.Buffer().RecordsToRead, 10);
  EXPECT_EQ(f.reports, (std::vector<std::string>{"Restart", "Miss 3"}))
      << "twelve new records overran a ring of ten";
}

TEST(ReadingCycle, ShortBlocksSkipWhatIsMissingOrStopTheRun) {
  CycleFixture f;
  f.Seen(20, 4);
  f.cycle.TakeDataBlock(std::vector<int32_t>{22, 6, 0, 10});  // no command word
  EXPECT_EQ(f.cycle.Buffer().RecordsToRead, 2);
  EXPECT_TRUE(f.reports.empty());
  f.cycle.TakeDataBlock(std::vector<int32_t>(4, 0));  // one record of the two arrived
  EXPECT_EQ(f.reports, std::vector<std::string>{"stop 12:1 from 2 records loaded."});
}

TEST(SimulatedController, RecordsOfTheTwoSineValuesGoRoundTheRing) {
  SimulatedController sim;
  sim.SizeRing(3, 2);
  sim.WriteNextRecord(3);
  EXPECT_EQ(sim.ReadRecords(0, 3), (std::vector<int32_t>{117, 67, 22, 0}));
  EXPECT_EQ(sim.Header()[0], 1);
  EXPECT_EQ(sim.Header()[3], 2);
  std::vector<int32_t> lastSlots = {sim.Header()[1]};
  for (int tick = 2; tick <= 4; ++tick) {
    sim.WriteNextRecord(3);
    lastSlots.push_back(sim.Header()[1]);
  }
  EXPECT_EQ(lastSlots, (std::vector<int32_t>{1, 2, 1, 2}));
  // The third tick rewrote record 1; the first two registers follow the phase angles, which
  // wrap at 360 degrees (36 and 18 ticks).
  EXPECT_EQ(sim.ReadRecords(0, 6), (std::vector<int32_t>{150, 93, 66, 164, 99, 88, 0}));
  for (int tick = 5; tick <= 36; ++tick)
    sim.WriteNextRecord(3);
  EXPECT_EQ(sim.ReadRecords(3, 2), (std::vector<int32_t>{100, 50, 0}));
  EXPECT_EQ(sim.ReadRecords(5, 3), (std::vector<int32_t>{36 * 2 * 11, 0, 0, 0}))
      << "nothing past the ring";
}

TEST(SimulatedController, NothingIsWrittenWithoutARecordLength) {
  SimulatedController sim;
  sim.SizeRing(0, 5);
  sim.WriteNextRecord(0);
  EXPECT_EQ(sim.Header()[0], 1);
  EXPECT_EQ(sim.ReadRecords(0, 1), (std::vector<int32_t>{0, 0}));
}

}  // namespace
}  // namespace vantrel
