// Which records the walk over the controller's ring decides to fetch, and where they lie.

#include <gtest/gtest.h>

#include "acquisition/trace_steps.h"
#include "support/module_fixture.h"

namespace vantrel {
namespace {

using testing::ModuleFixture;

constexpr int16_t kHeader = 16;
constexpr int16_t kRecordLength = 3;

struct WalkFixture : ModuleFixture {
  WalkFixture() {
    Define(1, 4, 0, 0, "Value", "d");
    m.description.RecordLength = kRecordLength;
    m.buffer.HeaderLength = kHeader;
    m.buffer.RecordReadOffset = kHeader;
    m.buffer.FormatKey = "VTL2";
    Build();
  }
  // One poll of the counter area: counter, write index, capacity.
  bool Poll(int32_t counter, int32_t writeIndex, int32_t capacity) {
    const std::vector<int32_t> area = {counter, writeIndex, 0, capacity, 0, 0, 0};
    return WalkBufferCounters(m, area);
  }
  // As if the records of the last plan had been read, the controller then at `counter`.
  void Seen(int32_t counter, int32_t writeIndex, int32_t capacity) {
    m.walk.LastBufferCounter = counter;
    m.walk.FirstRead = false;
    m.walk.WriteIndex = writeIndex;
    m.walk.RecordNumber = capacity;
    m.walk.LastIndex = static_cast<int16_t>(writeIndex == 0 ? capacity - 1 : writeIndex - 1);
  }
  int Slot() const { return (m.buffer.RecordReadOffset - kHeader) / kRecordLength; }
  std::vector<std::string> Rows() const {
    std::vector<std::string> out;
    for (int r = 1; r < m.grid.RowCount(); ++r)
      out.emplace_back(m.grid.Text(r, 3));
    return out;
  }
};

// A poll of a ring of ten plans the records to fetch and the slot they start at (-1: not
// looked at); all but the first poll follow a read that left the walk at `seenCounter` and
// `seenWriteIndex`. The slot being written is never read, so a ring of ten holds nine unread
// records: the tenth new one means the oldest was overwritten, and an overrun adds a miss row
// and reloads the ring. The counter counts in 31 bits.
TEST(BufferWalk, APollPlansTheNewRecordsFromTheirSlot) {
  struct Case {
    const char* what;
    bool firstPoll;
    int32_t seenCounter, seenWriteIndex, counter, writeIndex;
    int16_t toRead;
    int slot;
    std::vector<std::string> rows;
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
    WalkFixture f;
    if (!c.firstPoll) f.Seen(c.seenCounter, c.seenWriteIndex, 10);
    EXPECT_TRUE(f.Poll(c.counter, c.writeIndex, 10)) << c.what;
    EXPECT_EQ(f.m.buffer.RecordsToRead, c.toRead) << c.what;
    if (c.slot >= 0) {
      EXPECT_EQ(f.Slot(), c.slot) << c.what;
    }
    EXPECT_EQ(f.Rows(), c.rows) << c.what;
    EXPECT_FALSE(f.m.walk.FirstRead) << c.what;
  }
}

TEST(BufferWalk, ShortCounterAreaSkipsWhatIsMissing) {
  WalkFixture f;
  f.Seen(20, 4, 10);
  const std::vector<int32_t> area = {22, 6};  // no capacity, no command word
  EXPECT_TRUE(WalkBufferCounters(f.m, area));
  EXPECT_EQ(f.m.walk.RecordNumber, 10);
  EXPECT_EQ(f.m.buffer.RecordsToRead, 2);
}

TEST(BufferWalk, AShortLoadIsErrorTwelveWithTheCounts) {
  WalkFixture f;
  f.Seen(20, 1, 10);
  f.Poll(25, 6, 10);                         // five records from slot 1
  const std::vector<int32_t> records(6, 0);  // only two records arrived
  EXPECT_FALSE(LoadRecords(f.m, records));
  EXPECT_EQ(f.m.ErrMsg, "2 from 5 records loaded.");
  EXPECT_EQ(f.m.ErrType, 12);
}

}  // namespace
}  // namespace vantrel
