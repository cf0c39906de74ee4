// Rows added to the table: stamps, counters, the row limit and the marker rows.

#include "decoding/row_bookkeeping.h"

#include <gtest/gtest.h>

#include "acquisition/controller_status.h"
#include "support/module_fixture.h"

namespace vantrel {
namespace {

using testing::ModuleFixture;

struct RowFixture : ModuleFixture {
  RowFixture() {
    Define(1, 4, 0, 0, "A", "d");
    Define(2, 4, 0, 1, "B", "d");
    Build();  // 6 columns: number, date, time, status, A, B
    StampAt(8, 15, 30);
    m.PCDStatusText = "Run";
  }
  std::vector<std::string> Lines() const {
    std::vector<std::string> out;
    for (const auto& e : host.Named("OutputLine"))
      out.push_back(e.text);
    return out;
  }
  std::vector<std::string> Row(int r) const {
    std::vector<std::string> cells;
    for (int c = 0; c < m.grid.ColumnCount(); ++c)
      cells.emplace_back(m.grid.Text(r, c));
    return cells;
  }
};

// Which stamps reach the OutputLine event is followed by the host walks for every choice.
TEST(RecordRows, CellsCarryTheStampsAndTheCounterRestartsAtItsLimit) {
  RowFixture f;
  f.AddTextRow({" 1", " 2"});
  EXPECT_EQ(f.Row(1), (std::vector<std::string>{"1", "15/11/26", "08:15:30", "Run", " 1", " 2"}));
  EXPECT_EQ(f.m.grid.Row(1).kind, RowKind::Record);
  EXPECT_EQ(f.Lines(), std::vector<std::string>{" 1\t 2"});
  f.m.walk.RecordCount = 2147483647;
  f.AddTextRow({});
  EXPECT_EQ(f.m.walk.RecordCount, 0);
  EXPECT_EQ(f.m.surface.recordCount.foreColor, kColorRed);
}

TEST(RecordRows, TheNewestRowStaysInView) {
  RowFixture f;
  f.m.grid.SetRowHeight(240);
  f.m.grid.SetViewHeight(240 * 5);  // five rows fit
  for (int i = 0; i < 12; ++i)
    f.AddTextRow({});
  EXPECT_EQ(f.m.grid.TopRow(), 13 - 5 + 1);
  f.m.grid.SetViewHeight(0);
  f.AddTextRow({});
  EXPECT_EQ(f.m.grid.TopRow(), f.m.grid.RowCount() - 1) << "never past the last row";
}

TEST(RecordRows, ADecodedRecordKeepsItsValuesRawValuesAndReaderErrors) {
  RowFixture f;
  f.Define(3, 3, 0, 5, "Bad", "d");  // byte 5 is outside the byte table
  f.Define(2, 4, 0, 1, "B", "2d");
  f.Build();
  ASSERT_TRUE(DecodeRecord(f.m, std::vector<int32_t>{0x00070009}, 0));
  const TableRow& row = f.m.grid.Row(1);
  EXPECT_EQ(f.Row(1),
            (std::vector<std::string>{"1", "15/11/26", "08:15:30", "Run", " 9", "0.07", " 0"}));
  EXPECT_EQ(row.Raw(5), 7);
  EXPECT_EQ(row.Number(5), 0.07);
  EXPECT_EQ(row.Serial(1), 46341.0);  // the PC date, read as the export reads it
  EXPECT_EQ(f.Lines(), std::vector<std::string>{" 9\t0.07\t 0"});
  ASSERT_EQ(f.host.Named("ModulError").size(), 1u);
  EXPECT_EQ(f.host.Named("ModulError")[0].text, "Error in ReadByte function.");
}

TEST(RecordRows, ARecordThatCannotBeDecodedIsShownAndAddsNoRow) {
  RowFixture f;
  EXPECT_FALSE(DecodeRecord(f.m, std::vector<int32_t>{}, 0));
  EXPECT_EQ(f.m.grid.DataRowCount(), 0);
  EXPECT_TRUE(f.Lines().empty());
  ASSERT_EQ(f.prompts.Messages().size(), 1u);
  const auto& message = f.prompts.Messages()[0];
  EXPECT_EQ(message.text, "Subscript out of range");
  EXPECT_EQ(message.title, "Vantrel");
  EXPECT_EQ(message.icon, MessageIcon::Exclamation);
}

TEST(RecordRows, RecordsOfOneSecondShareTheirStampsAndTheNextSecondMovesThem) {
  RowFixture f;
  f.loop.Advance(1000);
  ASSERT_TRUE(DecodeRecord(f.m, std::vector<int32_t>{1}, 0));
  f.loop.Advance(400);
  ASSERT_TRUE(DecodeRecord(f.m, std::vector<int32_t>{2}, 0));
  f.loop.Advance(600);
  ASSERT_TRUE(DecodeRecord(f.m, std::vector<int32_t>{3}, 0));
  EXPECT_EQ(f.m.grid.Text(1, 2), "08:15:31");
  EXPECT_EQ(f.m.grid.Text(2, 2), "08:15:31");
  EXPECT_EQ(f.m.grid.Text(3, 2), "08:15:32");
  EXPECT_EQ(f.m.grid.Row(2).pcTime.millisecond, 400);
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
  RowFixture f;
  f.m.buffer.ReadState = 1;
  f.m.props.PCDStatus = 3;
  ChangePCDStatus(f.m);
  EXPECT_EQ(f.m.grid.DataRowCount(), 0) << "before the pointer only the text changes";
  EXPECT_EQ(f.m.PCDStatusText, "Stop");
  f.m.buffer.ReadState = 2;
  f.m.props.PCDStatus = 2;
  ChangePCDStatus(f.m);
  ChangePCDStatus(f.m);
  ASSERT_EQ(f.m.grid.DataRowCount(), 1);
  EXPECT_EQ(f.Row(1), (std::vector<std::string>{"1", "15/11/26", "08:15:30", "Run", "", ""}));
  EXPECT_EQ(f.m.grid.Row(1).kind, RowKind::Status);
}

// Shutting down once per command is followed by the host walk.
TEST(ControllerCommands, ClearEmptiesTheTable) {
  RowFixture f;
  f.AddTextRow({"x", "y"});
  f.m.buffer.CommandWord = 1;
  CheckCommand(f.m);
  EXPECT_EQ(f.m.grid.DataRowCount(), 0);
}

TEST(ControllerCommands, PCDCmdIsRaisedOnlyAfterTheNoticeClosed) {
  RowFixture f;
  bool raisedDuringNotice = false;
  f.prompts.SetNoticeWaiter([&](int ms) {
    raisedDuringNotice = !f.host.Named("PCDCmd").empty();
    f.loop.Advance(ms);
  });
  f.m.buffer.CommandWord = 9;
  CheckCommand(f.m);
  EXPECT_FALSE(raisedDuringNotice);
  EXPECT_EQ(f.host.Named("PCDCmd"), (std::vector<testing::RecordedEvent>{{"PCDCmd", {9}, ""}}));
  EXPECT_EQ(f.loop.ElapsedMs(), 3000);
}

}  // namespace
}  // namespace vantrel
