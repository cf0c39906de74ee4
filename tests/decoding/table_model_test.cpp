// The record table: rows kept as values, their cells reshaped with the columns, the oldest
// row dropped in constant time without leaking into the next, the selection, and what
// observers are told.

#include "vantrel/table_model.h"

#include <gtest/gtest.h>

#include "platform/runtime_error.h"

namespace vantrel {
namespace {

using Cells = std::vector<std::string>;

Cells Texts(const TableModel& t, int row) {
  Cells cells;
  for (int c = 0; c < t.ColumnCount(); ++c)
    cells.emplace_back(t.Text(row, c));
  return cells;
}

// A record row of text cells, filled in place as the control fills its rows.
void AddTexts(TableModel& t, const Cells& texts, RowKind kind = RowKind::Record) {
  t.AppendRow([&](TableRow& row) {
    row.kind = kind;
    for (const std::string& text : texts) {
      CellRow& part = row.stamps.Size() < kFirstTraceColumn ? row.stamps : row.cells;
      part.Append(text, "note " + text, static_cast<int64_t>(text.size()), CellValue::Text(),
                  {static_cast<double>(text.size()), 1.5, std::nullopt});
    }
  });
}

struct Recorder : TableObserver {
  std::vector<std::string> calls;
  void TableReset() override { calls.push_back("reset"); }
  void RowsAppended(int first, int count) override {
    calls.push_back("append " + std::to_string(first) + "+" + std::to_string(count));
  }
  void RowsRemoved(int first, int count) override {
    calls.push_back("remove " + std::to_string(first) + "+" + std::to_string(count));
  }
};

TEST(TableModel, RowsAreKeptAsValuesShapedToTheColumns) {
  TableModel t;
  t.SetColumnCount(4);
  AddTexts(t, {"1", "", "c", "d", "extra"});
  AddTexts(t, {"x"}, RowKind::Miss);
  ASSERT_EQ(t.RowCount(), 3);
  EXPECT_EQ(Texts(t, 1), (Cells{"1", "", "c", "d"}));
  EXPECT_EQ(Texts(t, 2), (Cells{"x", "", "", ""}));
  const TableRow& row = t.Row(1);
  EXPECT_EQ(row.kind, RowKind::Record);
  EXPECT_EQ(row.Comment(2), "note c");
  EXPECT_EQ(row.Raw(3), 1);
  EXPECT_EQ(row.Number(3), 1.0);
  EXPECT_EQ(row.Plot(3), 1.5);
  EXPECT_EQ(t.Row(2).kind, RowKind::Miss);
  EXPECT_EQ(t.Row(2).Number(1), std::nullopt) << "an added empty cell reads as nothing";
}

TEST(TableModel, CellsCanBeRewrittenWithoutDisturbingTheirNeighbours) {
  TableModel t;
  t.SetColumnCount(3);
  AddTexts(t, {"a", "b", "c"});
  t.SetText(1, 1, "longer text");
  t.SetText(1, 0, "");
  EXPECT_EQ(Texts(t, 1), (Cells{"", "longer text", "c"}));
  EXPECT_EQ(t.Row(1).Comment(2), "note c");
  t.SetColumnCount(2);
  EXPECT_EQ(Texts(t, 1), (Cells{"", "longer text"}));
  t.SetColumnCount(4);
  EXPECT_EQ(Texts(t, 1), (Cells{"", "longer text", "", ""}));
}

TEST(TableModel, ARowAppendedAfterTheOldestWasDroppedStartsClean) {
  // The dropped row's buffers are reused: nothing of its cells may show in the new row.
  TableModel t;
  t.SetColumnCount(3);
  AddTexts(t, {"a long first cell", "second", "third"}, RowKind::Restart);
  AddTexts(t, {"b", "c", "d"});
  t.RemoveRow(1);
  AddTexts(t, {"x"});
  ASSERT_EQ(t.DataRowCount(), 2);
  EXPECT_EQ(Texts(t, 2), (Cells{"x", "", ""}));
  EXPECT_EQ(t.Row(2).kind, RowKind::Record);
  EXPECT_EQ(t.Row(2).Comment(1), "");
  EXPECT_EQ(t.Row(2).Raw(1), 0);
}

TEST(TableModel, RemovingTheOldestRowKeepsTheOrderAndTellsObservers) {
  TableModel t;
  Recorder r;
  t.SetColumnCount(1);
  t.AddObserver(&r);
  for (int i = 1; i <= 4; ++i)
    AddTexts(t, {std::to_string(i)});
  t.RemoveRow(1);
  t.RemoveRow(2);
  ASSERT_EQ(t.DataRowCount(), 2);
  EXPECT_EQ(t.Text(1, 0), "2");
  EXPECT_EQ(t.Text(2, 0), "4");
  EXPECT_EQ(r.calls, (std::vector<std::string>{"append 1+1", "append 2+1", "append 3+1",
                                               "append 4+1", "remove 1+1", "remove 2+1"}));
}

TEST(TableModel, OutOfRangeCellsAreTrappedErrors) {
  TableModel t;
  t.SetColumnCount(2);
  EXPECT_THROW(static_cast<void>(t.Text(1, 0)), RuntimeError);
  EXPECT_THROW(static_cast<void>(t.Row(0)), RuntimeError);
  EXPECT_THROW(static_cast<void>(t.Text(0, 2)), RuntimeError);
  EXPECT_THROW(t.RemoveRow(0), RuntimeError);
  EXPECT_THROW(t.SetColumnWidth(-1, 10), RuntimeError);
  EXPECT_THROW(t.SetSelected(2, true), RuntimeError);
}

TEST(TableModel, ClearCellsKeepsTheShapeAndSetRowCountAddsOrDropsFromTheBottom) {
  TableModel t;
  t.SetColumnCount(2);
  t.SetText(0, 1, "Caption");
  t.SetColumnWidth(1, 900);
  AddTexts(t, {"a", "b"});
  AddTexts(t, {"c", "d"});
  t.SetRowCount(2);
  ASSERT_EQ(t.DataRowCount(), 1);
  EXPECT_EQ(Texts(t, 1), (Cells{"a", "b"}));
  t.ClearCells();
  EXPECT_EQ(t.Text(0, 1), "");
  EXPECT_EQ(Texts(t, 1), (Cells{"", ""}));
  EXPECT_EQ(t.Row(1).Number(1), std::nullopt);
  EXPECT_EQ(t.ColumnWidth(1), 900);
  t.SetRowCount(4);
  EXPECT_EQ(t.DataRowCount(), 3);
  EXPECT_EQ(t.Text(3, 0), "");
  t.SetRowCount(0);
  EXPECT_EQ(t.RowCount(), 1);
}

}  // namespace
}  // namespace vantrel
