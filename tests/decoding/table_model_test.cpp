// The record table: rows kept as values, their cells reshaped with the columns, the oldest
// row dropped in constant time without leaking into the next, the selection, and what
// observers are told.

#include "vantrel/table_model.h"

#include <gtest/gtest.h>

#include <tuple>

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

// A cell gives back exactly the value, raw value and readings it was made with, also where
// they do not fit its record (a raw value beyond 32 bits, a number and a serial besides a value).
TEST(CellRow, ValuesRawValuesAndReadingsComeBackAsGiven) {
  const std::vector<std::tuple<CellValue, int64_t, CellReading>> cases = {
      {CellValue::Text(), -1, {120000.0, 12.0, std::nullopt}},
      {CellValue::Text(), 0, {std::nullopt, 0.0, 46341.5}},
      {{ValueKind::Text, 0, 5, 0}, 0, {7.0, 7.0, std::nullopt}},
      {CellValue::Decimal(5, 2), 5, {0.5, 0.5, 2.0}},
      {CellValue::Integer(1), int64_t{1} << 40, {1.0, 1.0, std::nullopt}},
      {CellValue::Timestamp(46341.25), 9, {std::nullopt, 0.0, 46341.25}},
      {{ValueKind::Float, 0, 0, 2.5}, 0, {2.5, 3.0, std::nullopt}},
      {CellValue{}, 0, {}},
  };
  CellRow row;
  for (const auto& [value, raw, reading] : cases)
    row.Append("t", {}, raw, value, reading);
  for (size_t i = 0; i < cases.size(); ++i) {
    const auto& [value, raw, reading] = cases[i];
    const CellValue kept = row.Value(i);
    EXPECT_EQ(std::tie(kept.kind, kept.decimals, kept.integer, kept.real),
              std::tie(value.kind, value.decimals, value.integer, value.real))
        << i;
    EXPECT_EQ(std::tuple(row.Raw(i), row.Number(i), row.Plot(i), row.Serial(i)),
              std::tuple(raw, reading.number, reading.plot, reading.serial))
        << i;
  }
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

TEST(TableModel, DroppedRowsKeepTheOrderTellObserversAndLeaveNothingInLaterRows) {
  // A dropped row's buffers are reused: nothing of its cells may show in a new row.
  TableModel t;
  Recorder r;
  t.SetColumnCount(3);
  t.AddObserver(&r);
  AddTexts(t, {"a long first cell", "second", "third"}, RowKind::Restart);
  for (const std::string text : {"2", "3", "4"})
    AddTexts(t, {text, text, text});
  t.RemoveRow(1);
  t.RemoveRow(2);
  AddTexts(t, {"x"});
  ASSERT_EQ(t.DataRowCount(), 3);
  EXPECT_EQ(t.Text(1, 0), "2");
  EXPECT_EQ(t.Text(2, 0), "4");
  EXPECT_EQ(Texts(t, 3), (Cells{"x", "", ""}));
  EXPECT_EQ(t.Row(3).kind, RowKind::Record);
  EXPECT_EQ(t.Row(3).Comment(1), "");
  EXPECT_EQ(t.Row(3).Raw(1), 0);
  EXPECT_EQ(r.calls,
            (std::vector<std::string>{"append 1+1", "append 2+1", "append 3+1", "append 4+1",
                                      "remove 1+1", "remove 2+1", "append 3+1"}));
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
