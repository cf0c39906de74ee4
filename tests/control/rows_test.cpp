// Rows coming into the table: what a decoded record shows and reports, the stamps and marker
// rows the row store makes, status rows, the controller's commands and the row limit.

#include <gtest/gtest.h>

#include "acquisition/controller_status.h"
#include "support/live_trace.h"
#include "support/trace_table.h"

namespace vantrel {
namespace {

using testing::LiveTrace;
using testing::TraceTable;
using Row = std::vector<std::string>;

// Two words of register 0 and a byte at a position the byte table does not have.
LiveTrace TwoWords() {
  return LiveTrace({"0,Word,0,x,900,A,%d,0", "0,Word,1,x,900,B,%2d,0", "0,Byte,5,x,900,Bad,%d,0"},
                   1);
}

TEST(RecordRows, ADecodedRecordKeepsItsTextsRawValuesAndReaderErrors) {
  LiveTrace f = TwoWords();
  f->SetDateStampCol(true);
  f.Add({{0x00070009}});
  ASSERT_EQ(f.DataRows(), 1);
  const TableRow& row = f->Table().Row(1);
  EXPECT_EQ(f.Row(1), (Row{"1", "15/11/26", "08:15:30", "", " 9", "0.07", " 0"}));
  EXPECT_EQ(row.kind, RowKind::Record);
  EXPECT_EQ(row.Raw(5), 7);
  EXPECT_EQ(row.Number(5), 0.07);
  EXPECT_EQ(row.Serial(1), 46341.0);  // the PC date, read as the export reads it
  EXPECT_EQ(f.Lines(), Row{"15/11/26\t 9\t0.07\t 0"});
  EXPECT_EQ(f.host.Errors(), Row{"13:Error in ReadByte function."});
  EXPECT_EQ(f->RecordCount(), 1);
  EXPECT_EQ(f->GetSurface().recordCount.caption, "1");
  EXPECT_EQ(f->GetSurface().rowCount.caption, "1");
}

TEST(RecordRows, ARecordThatCannotBeDecodedIsShownAddsNoRowAndStopsTheRun) {
  LiveTrace f({"3,Word,0,x,900,A,%d,0"}, 1);  // register 3 of a one-register record
  f.Add({{5}});
  EXPECT_EQ(f.DataRows(), 0);
  EXPECT_TRUE(f.Lines().empty());
  ASSERT_EQ(f.prompts.Messages().size(), 1u);
  const auto& message = f.prompts.Messages()[0];
  EXPECT_EQ(message.text, "Subscript out of range");
  EXPECT_EQ(message.title, "Vantrel");
  EXPECT_EQ(message.icon, MessageIcon::Exclamation);
  EXPECT_EQ(f.host.Errors(), Row{"12:0 from 1 records loaded."});
  EXPECT_EQ(f->RunMode(), 0);
}

// Dropping the oldest row of a full table is followed by the host walks.
TEST(RecordRows, AFullTableIsExportedWithAutoExport) {
  LiveTrace f = TwoWords();
  f->SetMaxRows(2);
  f.Add({{1}, {2}, {3}});
  f->SetExportFile(f.dir.File("full.xls"));
  f->SetAutoExport(true);
  f.Add({{4}});
  EXPECT_EQ(f.host.Named("NewExportFile").size(), 1u);
  EXPECT_EQ(f.DataRows(), 1) << "the export emptied the table before the new row";
  EXPECT_EQ(f->Table().Text(1, 4), " 4");
  EXPECT_TRUE(f.prompts.Messages().empty());
}

TEST(ControllerStatus, CodesHaveTheirTextsAndSixOrUnknownAreBadStatus) {
  const char* texts[] = {"Offline", "Disconnect",      "Run",        "Stop",
                         "Halt",    "Conditional Run", "Bad Status", "Conditional Stop",
                         "Trace"};
  for (int16_t code = 0; code <= 8; ++code)
    EXPECT_EQ(PCDStatusTextOf(code), texts[code]) << code;
  EXPECT_EQ(PCDStatusTextOf(-1), "Bad Status");
}

TEST(ControllerStatus, AChangeAddsOneStatusRowOnceTheBufferIsKnown) {
  testing::ControlFixture before;
  before->SetPCDStatus(3);
  EXPECT_EQ(before->Table().DataRowCount(), 0) << "before the pointer only the text changes";
  LiveTrace f = TwoWords();
  f->SetPCDStatus(2);
  f->SetPCDStatus(2);
  ASSERT_EQ(f.DataRows(), 1);
  EXPECT_EQ(f.Row(1), (Row{"1", "15/11/26", "08:15:30", "Run", "", "", ""}));
  EXPECT_EQ(f->Table().Row(1).kind, RowKind::Status);
  f.Add({{1}});
  EXPECT_EQ(f->Table().Text(2, 3), "Run") << "records carry the status";
}

TEST(ControllerCommands, ClearEmptiesTheTableAndShutDownFollowsTheNotice) {
  LiveTrace f = TwoWords();
  f.Add({{1}, {2}});
  f.Command(1);
  f.Poll();
  EXPECT_EQ(f.DataRows(), 0);
  bool raisedDuringNotice = false;
  f.prompts.SetNoticeWaiter([&](int ms) {
    raisedDuringNotice = !f.host.Named("PCDCmd").empty();
    f.loop.Advance(ms);
  });
  f.Command(9);
  f.Poll();
  EXPECT_FALSE(raisedDuringNotice);
  EXPECT_EQ(f.host.Named("PCDCmd"), (std::vector<testing::RecordedEvent>{{"PCDCmd", {9}, ""}}));
}

// The row store on its own: stamps shared within a second, marker rows, the view.
TEST(RowStore, RecordsOfOneSecondShareTheirStampsAndTheNextSecondMovesThem) {
  TraceTable t;
  t.Define(1, 4, 0, 0, "A", "d");
  t.Build();
  t.rows.StampAt({2026, 11, 15, 8, 15, 31, 0});
  t.AddTextRow({"1"});
  t.rows.StampAt({2026, 11, 15, 8, 15, 31, 400});
  t.AddTextRow({"2"});
  t.rows.StampAt({2026, 11, 15, 8, 15, 32, 0});
  t.AddTextRow({"3"});
  EXPECT_EQ(t.table.Text(1, 2), "08:15:31");
  EXPECT_EQ(t.table.Text(2, 2), "08:15:31");
  EXPECT_EQ(t.table.Text(3, 2), "08:15:32");
  EXPECT_EQ(t.table.Row(2).pcTime.millisecond, 400);
}

TEST(RowStore, MarkerRowsFillTheTraceColumnsWithDashes) {
  TraceTable t;
  t.Define(1, 4, 0, 0, "A", "d");
  t.Define(2, 4, 0, 1, "B", "d");
  t.Build();
  t.shown = {false, true, true};
  t.StampAt(8, 15, 30);
  t.AddMissRow(11);
  t.rows.AppendMarker(RowKind::Restart, "Restart", 0, t.Stamps());
  const std::string d(16, '-');
  EXPECT_EQ(t.Row(1), (Row{"0", "15/11/26", "08:15:30", "Miss 11", "", d}));
  EXPECT_EQ(t.Row(2), (Row{"0", "15/11/26", "08:15:30", "Restart", d, d}));
  EXPECT_EQ(t.table.Row(1).kind, RowKind::Miss);
  EXPECT_EQ(t.table.Row(1).missed, 11);
  EXPECT_EQ(t.lines, (Row{"08:15:30\tMiss 11\t\t" + d + "\t" + d + "\t" + d,
                          "08:15:30\tRestart\t" + d + "\t" + d + "\t" + d + "\t" + d}));
}

TEST(RowStore, TheNewestRowStaysInView) {
  TraceTable t;
  t.Build();
  t.table.SetRowHeight(240);
  t.table.SetViewHeight(240 * 5);  // five rows fit
  for (int i = 0; i < 12; ++i) {
    t.AddTextRow({});
    t.rows.ScrollToNewest();
  }
  EXPECT_EQ(t.table.TopRow(), 13 - 5 + 1);
  t.table.SetViewHeight(0);
  t.AddTextRow({});
  t.rows.ScrollToNewest();
  EXPECT_EQ(t.table.TopRow(), t.table.RowCount() - 1) << "never past the last row";
}

}  // namespace
}  // namespace vantrel
