// The walk round the ring, seen from a host: a program writes records into a ring of five
// slots in chosen steps, and every line the control raises is compared with the text it
// must have. Covers the first poll, records before the write slot, a burst that wraps, an
// overrun, a counter that goes backwards, a negative counter, the row limit, the stamp
// columns of OutputLine, and the typed rows that row sinks see. The live trace below reads
// longer runs with every way of answering and every buffer layout.

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "hosts/virtual_host.h"
#include "vantrel/control.h"
#include "vantrel/recorded_export.h"
#include "vantrel/row_sink.h"
#include "vantrel/surface.h"

namespace vantrel::hosts {
namespace {

using Lines = std::vector<std::string>;
const std::string kDashes(16, '-');

struct RecordingSink : RowSink {
  std::vector<HistoryDescription> descriptions;
  std::vector<HistoryRow> rows;
  void DescriptionLoaded(const HistoryDescription& d) override { descriptions.push_back(d); }
  void RowAdded(const HistoryRow& row) override { rows.push_back(row); }
};

struct Stamps {
  bool date, time, status;
  const char* name;
};

// One step of a walk: the program restarts its counter (when asked) and writes `write`
// records, the control polls once, and these are the lines it raises.
struct Step {
  bool restart;
  int write;
  Lines lines;
};

class ScriptedTrace : public ::testing::TestWithParam<Stamps>, protected VirtualPlant {
 protected:
  explicit ScriptedTrace(int32_t counterStart = 0)
      : VirtualPlant(NumberedRecords(5, counterStart), Answering::Inside) {}

  // Starts reading; the program has already written what the test wants found at start.
  void Connect() {
    VirtualPlant::Connect(100, [this](Control& c) {
      c.AddRowSink(&sink);
      c.SetDateStampCol(GetParam().date);
      c.SetTimeStampCol(GetParam().time);
      c.SetPCDStatusCol(GetParam().status);
      c.SetPCDStatus(2);
    });
    ASSERT_EQ(control->ReadState(), 3) << (host.errors.empty() ? "" : host.errors.front());
  }
  void PollOnce() { loop.Advance(100); }
  void Walk(const std::vector<Step>& steps) {
    for (size_t i = 0; i < steps.size(); ++i) {
      SCOPED_TRACE("step " + std::to_string(i));
      if (steps[i].restart) program.RestartCounter();
      program.WriteRecords(steps[i].write);
      PollOnce();
      EXPECT_EQ(NewLines(), steps[i].lines);
    }
    EXPECT_TRUE(host.errors.empty()) << host.errors.front();
  }
  // The lines raised since the last call.
  Lines NewLines() {
    Lines lines(host.lines.begin() + static_cast<long>(taken), host.lines.end());
    taken = host.lines.size();
    return lines;
  }

  // The line of record `n` as the control raises it: the chosen stamps, then the columns
  // (the four-character text column shows "ok" and two blanks).
  std::string Record(int n) const { return Prefix("Run") + " " + std::to_string(n) + "\tok  "; }
  // Marker rows: the first data column empty (Miss) or dashed (Restart), dashes in every
  // further column up to the last (the two data columns, then raw and comment values).
  std::string Miss(int count) const {
    return Prefix("Miss " + std::to_string(count)) + "\t" + kDashes + "\t" + kDashes + "\t" +
           kDashes;
  }
  std::string Restart() const {
    return Prefix("Restart") + kDashes + "\t" + kDashes + "\t" + kDashes + "\t" + kDashes;
  }
  std::string Prefix(const std::string& status) const {
    return std::string(GetParam().date ? "15/11/26\t" : "") +
           (GetParam().time ? "08:15:30\t" : "") + (GetParam().status ? status + "\t" : "");
  }

  size_t taken = 0;
  RecordingSink sink;
};

TEST_P(ScriptedTrace, EveryStepOfTheWalkRaisesItsLines) {
  program.WriteRecords(2);
  Connect();
  // First poll: the ring has not wrapped, slots 0 and 1 hold the history.
  EXPECT_EQ(NewLines(), (Lines{Record(1), Record(2)}));
  Walk({// New records before the write slot.
        {false, 2, {Record(3), Record(4)}},
        // Records 5, 6, 7 go to slots 4, 0, 1: the end of the ring is read first, the start
        // at the next poll.
        {false, 3, {Record(5)}},
        {false, 0, {Record(6), Record(7)}},
        {false, 0, {}},
        // Seven records in one interval overrun a ring that holds four unread: records 8 to
        // 10 are lost and counted, the four newest are read oldest first without the write
        // slot.
        {false, 7, {Miss(3), Record(11), Record(12), Record(13), Record(14)}},
        // The controller restarts its counter: the restart is marked at once and reading
        // goes on from slot 0 at the next poll.
        {true, 2, {Restart()}},
        {false, 0, {Record(15), Record(16)}},
        {false, 1, {Record(17)}}});
  // Every line is also a row of the table, marker rows included.
  EXPECT_EQ(control->Table().DataRowCount(), 16);
  EXPECT_EQ(control->RecordCount(), 14);

  // Row sinks see the description and every row, typed: one row for every line, in the same
  // order, which its cells shown again with the stamps give exactly (markers and a status
  // row included).
  control->SetPCDStatus(3);
  PollOnce();
  ASSERT_EQ(sink.descriptions.size(), 1u);
  const HistoryDescription& d = sink.descriptions[0];
  EXPECT_EQ(d.key + " " + d.title + " " + std::to_string(d.version), "LIV1 Live 1");
  ASSERT_EQ(d.columns.size(), 2u);
  EXPECT_EQ(d.columns[0].caption + d.columns[0].fieldType + d.columns[0].displayCode,
            "NumberLongd");
  EXPECT_EQ(d.columns[1].caption + d.columns[1].fieldType + d.columns[1].displayCode, "TextStrga");
  EXPECT_EQ(d.columns[1].registerIndex, 1);
  std::string kinds;  // Record, Miss, resTart and Status rows
  for (const HistoryRow& row : sink.rows)
    kinds += "RMTS"[static_cast<int>(row.kind)];
  EXPECT_EQ(kinds, "RRRRRRRMRRRRTRRRS");
  ASSERT_EQ(sink.rows.size(), host.lines.size());
  const RecordedStamps stamps{GetParam().date, GetParam().time, GetParam().status};
  for (size_t i = 0; i < sink.rows.size(); ++i) {
    const HistoryRow& row = sink.rows[i];
    const RecordedRow recorded{row.kind, row.recordNumber, row.pcTime, row.status, row.line};
    EXPECT_EQ(RecordedLine(recorded, stamps), host.lines[i]) << "row " << i;
  }
  const HistoryRow& first = sink.rows[0];
  EXPECT_EQ(first.recordNumber, 1);
  // The PC time of the decode, to the millisecond: the clock had run 5 ms at the first poll.
  EXPECT_EQ(first.pcTime, (DateTime{2026, 11, 15, 8, 15, 30, 5}));
  EXPECT_EQ(first.display, (Lines{" 1", "ok  "}));
  EXPECT_EQ(first.raw, (Lines{"1", std::to_string(0x6F6B2020)}));
  EXPECT_EQ(first.number, (std::vector<std::optional<double>>{1.0, std::nullopt}));
  EXPECT_EQ(sink.rows[7].missed, 3);
  EXPECT_TRUE(sink.rows[7].display.empty()) << "a Miss row has no values";
  EXPECT_EQ(sink.rows[16].display, (Lines{"", ""})) << "the status row";
  // A removed sink hears nothing more.
  control->RemoveRowSink(&sink);
  program.WriteRecords(1);
  PollOnce();
  EXPECT_EQ(NewLines().size(), 2u);
  EXPECT_EQ(sink.rows.size(), 17u);
}

TEST_P(ScriptedTrace, TheRowLimitDropsTheOldestRowsAndTurnsTheRowCountRed) {
  program.WriteRecords(3);
  Connect();
  control->SetMaxRows(4);
  EXPECT_EQ(control->GetSurface().rowCount.foreColor, kColorBlack);
  program.WriteRecords(3);  // wraps: read in two polls
  PollOnce();
  PollOnce();
  EXPECT_EQ(NewLines(), (Lines{Record(1), Record(2), Record(3), Record(4), Record(5), Record(6)}));
  const TableModel& table = control->Table();
  ASSERT_EQ(table.DataRowCount(), 4);
  // Column 4 holds the first data column whatever stamps are shown.
  EXPECT_EQ(std::string(table.Text(1, 4)) + "|" + std::string(table.Text(4, 4)), " 3| 6");
  EXPECT_EQ(control->GetSurface().rowCount.caption, "4");
  EXPECT_EQ(control->GetSurface().rowCount.foreColor, kColorRed);
  EXPECT_EQ(control->GetSurface().recordCount.caption, "6");
}

TEST_P(ScriptedTrace, AStandingShutDownCommandIsNotRunAgainButANewOneIs) {
  program.SetCommand(9);  // left standing from before the control started
  program.WriteRecords(1);
  Connect();
  PollOnce();
  EXPECT_TRUE(prompts.Notices().empty());
  EXPECT_TRUE(host.commands.empty());
  for (const int command : {0, 9, 9}) {
    program.SetCommand(command);
    PollOnce();
  }
  ASSERT_EQ(prompts.Notices().size(), 1u);
  EXPECT_EQ(prompts.Notices()[0].message, "Vantrel Application will shut down...");
  EXPECT_EQ(prompts.Notices()[0].durationMs, 3000);
  EXPECT_EQ(host.commands, std::vector<int16_t>{9});
  // Reading went on around the command.
  EXPECT_EQ(NewLines(), Lines{Record(1)});
}

TEST_P(ScriptedTrace, TheExportCommandWritesTheTableAndSaysWhere) {
  program.WriteRecords(3);
  Connect();
  const std::string target = dir.File("commanded.xls");
  control->SetExportFile(target);
  program.SetCommand(8);
  PollOnce();
  EXPECT_TRUE(std::filesystem::exists(target));
  EXPECT_EQ(control->Table().DataRowCount(), 0) << "the exported rows leave the table";
  ASSERT_EQ(prompts.Messages().size(), 1u);
  EXPECT_EQ(prompts.Messages()[0].text, "Successful export to file : " + target);
  EXPECT_EQ(prompts.Messages()[0].title, "Vantrel exportation");
  // Rows keep coming after the export.
  program.WriteRecords(1);
  PollOnce();
  EXPECT_EQ(control->Table().DataRowCount(), 1);
}

// A controller that has run for long: its counter has passed 2^31 and reads negative.
class NegativeCounter : public ScriptedTrace {
 protected:
  NegativeCounter() : ScriptedTrace(-20) {}
};

TEST_P(NegativeCounter, RecordsAreFoundAsWithAPositiveOne) {
  program.WriteRecords(6);  // counters -19 .. -14: the ring has gone round
  Connect();
  // The first poll reads the whole ring but the write slot.
  EXPECT_EQ(NewLines(), (Lines{Record(3), Record(4), Record(5), Record(6)}));
  Walk({{false, 2, {Record(7), Record(8)}},
        {false, 9, {Miss(5), Record(14), Record(15), Record(16), Record(17)}}});
}

const Stamps kStampChoices[] = {{false, false, false, "NoStamps"},
                                {true, true, true, "DateTimeAndStatus"}};
auto StampName = [](const auto& info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(Stamps, ScriptedTrace, ::testing::ValuesIn(kStampChoices), StampName);
INSTANTIATE_TEST_SUITE_P(Stamps, NegativeCounter, ::testing::ValuesIn(kStampChoices), StampName);

// The live trace: a control reading the virtual controller end to end, the host answering
// either inside the request event or on a later turn of the event loop, from registers or
// from a data block, after an 8-word or a 16-word header: every record the program writes is
// shown exactly once, in order.
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
