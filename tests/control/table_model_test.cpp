#include "vantrel/table_model.h"

#include <gtest/gtest.h>

#include "platform/runtime_error.h"

namespace vantrel {
namespace {

using Cells = std::vector<std::string>;

// The texts of a row, column by column.
Cells Row(const TableModel& t, int row) {
  Cells cells;
  for (int c = 0; c < t.ColumnCount(); ++c)
    cells.emplace_back(t.Text(row, c));
  return cells;
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

TEST(TableModel, AddItemSplitsAtTabsIntoTheColumns) {
  TableModel t;
  t.SetColumnCount(4);
  t.AddItem("1\t\tc\td\textra");
  t.AddItem("x");
  ASSERT_EQ(t.RowCount(), 3);
  EXPECT_EQ(Row(t, 1), (Cells{"1", "", "c", "d"}));
  EXPECT_EQ(Row(t, 2), (Cells{"x", "", "", ""}));
}

TEST(TableModel, CellsCanBeRewrittenWithoutDisturbingTheirNeighbours) {
  TableModel t;
  t.SetColumnCount(3);
  t.AddItem("a\tb\tc");
  t.SetText(1, 1, "longer text");
  t.SetText(1, 0, "");
  EXPECT_EQ(Row(t, 1), (Cells{"", "longer text", "c"}));
  t.SetColumnCount(2);
  EXPECT_EQ(Row(t, 1), (Cells{"", "longer text"}));
  t.SetColumnCount(4);
  EXPECT_EQ(Row(t, 1), (Cells{"", "longer text", "", ""}));
}

TEST(TableModel, ARowAppendedAfterTheOldestWasDroppedStartsClean) {
  // The dropped row's buffers are reused: nothing of its cells may show in the new row.
  TableModel t;
  t.SetColumnCount(3);
  t.AddItem("a long first cell\tsecond\tthird");
  t.AddItem("b\tc\td");
  t.RemoveRow(1);
  t.AddItem("x");
  std::vector<std::string> cells = {"p", "q\tr"};
  t.RemoveRow(1);
  t.AddRow(cells);
  ASSERT_EQ(t.DataRowCount(), 2);
  EXPECT_EQ(Row(t, 1), (Cells{"x", "", ""}));
  EXPECT_EQ(Row(t, 2), (Cells{"p", "q\tr", ""}));  // a tab inside a cell stays in that cell
  t.SetText(2, 2, "s\tt");
  t.SetText(2, 0, "");
  EXPECT_EQ(Row(t, 2), (Cells{"", "q\tr", "s\tt"}));
}

TEST(TableModel, RowsWithoutColumnsAndEmptyCellsKeepTheirShape) {
  TableModel t;
  t.AddItem("ignored\tcells");
  EXPECT_EQ(t.DataRowCount(), 1);
  t.SetColumnCount(2);
  EXPECT_EQ(Row(t, 1), (Cells{"", ""}));
  t.AddItem("\t\t");
  EXPECT_EQ(Row(t, 2), (Cells{"", ""}));
}

TEST(TableModel, RemovingTheOldestRowKeepsTheOrderAndTellsObservers) {
  TableModel t;
  Recorder r;
  t.SetColumnCount(1);
  t.AddObserver(&r);
  for (int i = 1; i <= 4; ++i)
    t.AddItem(std::to_string(i));
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
  EXPECT_THROW(static_cast<void>(t.Text(0, 2)), RuntimeError);
  EXPECT_THROW(t.RemoveRow(0), RuntimeError);
  EXPECT_THROW(t.SetColumnWidth(-1, 10), RuntimeError);
}

TEST(TableModel, ClearCellsEmptiesTextsButKeepsTheShape) {
  TableModel t;
  t.SetColumnCount(2);
  t.SetText(0, 1, "Caption");
  t.SetColumnWidth(1, 900);
  t.AddItem("a\tb");
  t.ClearCells();
  EXPECT_EQ(t.RowCount(), 2);
  EXPECT_EQ(t.Text(0, 1), "");
  EXPECT_EQ(t.Text(1, 0), "");
  EXPECT_EQ(t.ColumnWidth(1), 900);
}

TEST(TableModel, SetRowCountAddsEmptyRowsOrDropsFromTheBottom) {
  TableModel t;
  t.SetColumnCount(1);
  t.AddItem("a");
  t.AddItem("b");
  t.SetRowCount(2);
  EXPECT_EQ(t.DataRowCount(), 1);
  EXPECT_EQ(t.Text(1, 0), "a");
  t.SetRowCount(4);
  EXPECT_EQ(t.DataRowCount(), 3);
  EXPECT_EQ(t.Text(3, 0), "");
  t.SetRowCount(0);
  EXPECT_EQ(t.RowCount(), 1);
}

}  // namespace
}  // namespace vantrel
