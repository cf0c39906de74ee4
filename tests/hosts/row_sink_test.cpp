// Row sinks see every row the table receives, typed, with the PC time, the display texts and
// the raw values per trace column, and every description loaded.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "hosts/virtual_host.h"
#include "support/temp_dir.h"
#include "vantrel/control.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/recorded_export.h"
#include "vantrel/row_sink.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel::hosts {
namespace {

struct RecordingSink : RowSink {
  std::vector<HistoryDescription> descriptions;
  std::vector<HistoryRow> rows;
  void DescriptionLoaded(const HistoryDescription& d) override { descriptions.push_back(d); }
  void RowAdded(const HistoryRow& row) override { rows.push_back(row); }
};

struct SinkFixture : VirtualPlant {
  SinkFixture() : VirtualPlant(NumberedRecords(5), Answering::Inside) {
    program.WriteRecords(2);
    Connect(100, [this](Control& c) {
      c.AddRowSink(&sink);
      c.SetPCDStatus(2);
      c.SetTimeStampCol(true);
      c.SetPCDStatusCol(true);
    });
  }
  RecordingSink sink;
};

TEST(RowSinks, SeeTheDescriptionAndEveryRowWithItsKind) {
  SinkFixture f;
  ASSERT_EQ(f.sink.descriptions.size(), 1u);
  const HistoryDescription& d = f.sink.descriptions[0];
  EXPECT_EQ(d.key, "LIV1");
  EXPECT_EQ(d.title, "Live");
  EXPECT_EQ(d.version, 1);
  ASSERT_EQ(d.columns.size(), 2u);
  EXPECT_EQ(d.columns[0].caption, "Number");
  EXPECT_EQ(d.columns[0].fieldType, "Long");
  EXPECT_EQ(d.columns[0].displayCode, "d");
  EXPECT_EQ(d.columns[1].caption, "Text");
  EXPECT_EQ(d.columns[1].fieldType, "Strg");
  EXPECT_EQ(d.columns[1].registerIndex, 1);

  f.program.WriteRecords(9);  // overruns the ring of 5
  f.loop.Advance(100);
  f.control->SetPCDStatus(3);
  f.program.RestartCounter();
  f.loop.Advance(100);

  std::vector<HistoryRowKind> kinds;
  for (const HistoryRow& row : f.sink.rows)
    kinds.push_back(row.kind);
  using K = HistoryRowKind;
  EXPECT_EQ(kinds, (std::vector<K>{K::Record, K::Record, K::Miss, K::Record, K::Record, K::Record,
                                   K::Record, K::Status, K::Restart}));
  // One row for every line the host heard, in the same order, and each row's cells shown
  // again with its stamps give that line exactly (markers and status rows included): the
  // status texts ("Run", "Miss 5", "Stop", "Restart") and the PC time to the second.
  ASSERT_EQ(f.sink.rows.size(), f.host.lines.size());
  const RecordedStamps stamps{f.control->DateStampCol(), f.control->TimeStampCol(),
                              f.control->PCDStatusCol()};
  for (size_t i = 0; i < f.sink.rows.size(); ++i) {
    const HistoryRow& row = f.sink.rows[i];
    const RecordedRow recorded{row.kind, row.recordNumber, row.pcTime, row.status, row.line};
    EXPECT_EQ(RecordedLine(recorded, stamps), f.host.lines[i]) << "row " << i;
  }

  const HistoryRow& first = f.sink.rows[0];
  EXPECT_EQ(first.recordNumber, 1);
  // The PC time of the decode, to the millisecond: the clock had run 5 ms at the first poll.
  EXPECT_EQ(first.pcTime, (DateTime{2026, 11, 15, 8, 15, 30, 5}));
  EXPECT_EQ(first.display, (std::vector<std::string>{" 1", "ok  "}));
  EXPECT_EQ(first.raw, (std::vector<std::string>{"1", std::to_string(0x6F6B2020)}));
  EXPECT_EQ(first.number, (std::vector<std::optional<double>>{1.0, std::nullopt}));

  EXPECT_EQ(f.sink.rows[2].missed, 5);
  EXPECT_TRUE(f.sink.rows[2].display.empty()) << "a Miss row has no values";
  EXPECT_EQ(f.sink.rows[7].display, (std::vector<std::string>{"", ""})) << "the status row";
}

TEST(RowSinks, ARemovedSinkHearsNothingMore) {
  SinkFixture f;
  const size_t before = f.sink.rows.size();
  f.control->RemoveRowSink(&f.sink);
  f.program.WriteRecords(2);
  f.loop.Advance(100);
  EXPECT_EQ(f.sink.rows.size(), before);
  EXPECT_EQ(f.host.lines.size(), before + 2);
}

}  // namespace
}  // namespace vantrel::hosts
