// The graph and the column selection: the graph component on a table built from a
// hand-made description, the graph button and the mouse through the control.

#include "output/graph_view.h"

#include <gtest/gtest.h>

#include <string>

#include "support/live_trace.h"
#include "support/trace_table.h"

namespace vantrel {
namespace {

constexpr int16_t kWord = 4;

struct GraphTable : testing::TraceTable {
  GraphTable() {
    Define(1, kWord, 0, 0, "Level", "d");
    Define(2, kWord, 0, 1, "Flow", "d");
    Build();  // table columns 4 (Level) and 5 (Flow), 6 columns in all
  }
  void AddRows(int count) {
    for (int i = 1; i <= count; ++i)
      AddTextRow({std::to_string(i * 10), i % 2 ? "abc" : std::to_string(-i)});
  }
  GraphView graph;
};

TEST(Graph, FewerRowsThanPointsFillFromTheLeftAndTextsAreZero) {
  GraphTable t;
  t.AddRows(5);
  ASSERT_TRUE(SelectTraceColumnsForGraph(t.table));
  EXPECT_EQ(t.table.HeaderBackColor(4), kColorYellow);
  EXPECT_EQ(t.table.HeaderBackColor(5), kColorYellow);
  t.graph.Setup(t.table, 20);
  const GraphModel& chart = t.graph.Model();
  ASSERT_EQ(chart.SeriesCount(), 2);
  EXPECT_EQ(chart.Series(1).label, "Level");
  ASSERT_EQ(chart.PointCount(), 20);
  EXPECT_EQ(chart.Value(1, 1), 10.0);
  EXPECT_EQ(chart.Value(1, 5), 50.0);
  EXPECT_FALSE(chart.Value(1, 6).has_value());
  EXPECT_EQ(chart.PointLabel(5), "5");
  EXPECT_EQ(chart.PointLabel(6), "");
  EXPECT_EQ(chart.Value(2, 1), 0.0) << "a text that is not a number is drawn as 0";
  EXPECT_EQ(chart.Value(2, 2), -2.0);
  t.AddRows(1);
  t.graph.Refresh(t.table, 20);
  EXPECT_EQ(chart.Value(1, 6), 10.0);
}

// The graph shows the newest rows. The label step follows the number of points: every point
// up to 20, every 5th up to 100, every 10th up to 500, every 20th above; the step counts row
// numbers, not point positions.
TEST(Graph, NewestRowsWithLabelStepsThatFollowTheNumberOfPoints) {
  struct Case {
    int32_t points;
    int rows;
    int step;
  };
  for (const Case c : {Case{20, 43, 1}, Case{100, 300, 5}, Case{101, 250, 10}, Case{500, 700, 10},
                       Case{501, 700, 20}}) {
    SCOPED_TRACE(c.points);
    GraphTable t;
    t.AddRows(c.rows);
    t.table.SetSelected(4, true);
    t.graph.Setup(t.table, c.points);
    const GraphModel& chart = t.graph.Model();
    ASSERT_EQ(chart.SeriesCount(), 1) << "only selected columns become series";
    ASSERT_EQ(chart.PointCount(), c.points);
    const int start = c.rows - c.points;
    for (int i = 1; i <= c.points; ++i) {
      const int row = start + i;
      EXPECT_EQ(chart.Value(1, i), row * 10.0) << "point " << i;
      EXPECT_EQ(chart.PointLabel(i), row % c.step == 0 ? std::to_string(row) : "") << i;
    }
  }
}

TEST(GraphButton, SwitchesViewsKeepsTheSelectionAndFollowsNewRows) {
  testing::LiveTrace f({"0,Word,0,x,900,Level,%d,0", "0,Word,1,x,900,Flow,%d,0"}, 1);
  f.Add({{10}, {20}});
  f->PressTable(5);
  f->DoubleClickTable(5);
  f->ClickGraphButton();
  EXPECT_EQ(f->GetSurface().graphButton.caption, "Grid");
  EXPECT_FALSE(f->GetSurface().gridVisible);
  EXPECT_TRUE(f->GetSurface().chartVisible);
  ASSERT_EQ(f->Graph().SeriesCount(), 1);
  EXPECT_EQ(f->Graph().Series(1).label, "Flow");
  f->SetMaxGraph(5);
  EXPECT_EQ(f->Graph().PointCount(), 20) << "at least 20 points";
  f.Add({{0x00030000}});
  EXPECT_EQ(f->Graph().Value(1, 3), 3.0);
  f->ClickGraphButton();
  EXPECT_EQ(f->GetSurface().graphButton.caption, "Graph");
  EXPECT_TRUE(f->GetSurface().gridVisible);
  EXPECT_EQ(f->Table().HeaderBackColor(5), kColorYellow) << "the selection stays";
  EXPECT_EQ(f->Table().HeaderBackColor(4), 0);
}

TEST(GraphButton, ATableWithoutDataColumnsStaysInTableView) {
  testing::ControlFixture f;
  f->ClickGraphButton();
  EXPECT_FALSE(f->GetSurface().chartVisible);
  ASSERT_EQ(f.prompts.Messages().size(), 1u);
  EXPECT_EQ(f.prompts.Messages()[0].text,
            "No data columns selected for the graph !\r\rDouble-click on the data column header "
            "to select it.");
  EXPECT_EQ(f.prompts.Messages()[0].title, "Show graph");
}

TEST(ColumnSelection, DoubleClickTogglesOnlyAfterAHeaderPress) {
  GraphTable t;
  t.AddRows(1);
  HeaderSelection s;
  s.Press(t.table, t.table.RowHeight() + 5);  // a data row
  s.DoubleClick(t.table, 4);
  EXPECT_EQ(t.table.HeaderBackColor(4), 0);
  s.Press(t.table, 5);
  s.DoubleClick(t.table, 4);
  EXPECT_EQ(t.table.HeaderBackColor(4), kColorYellow);
  s.DoubleClick(t.table, 4);
  EXPECT_EQ(t.table.HeaderBackColor(4), kColorYellow) << "one toggle per press";
  s.Press(t.table, 5);
  s.DoubleClick(t.table, 4);
  EXPECT_EQ(t.table.HeaderBackColor(4), 0);
  s.Press(t.table, 5);
  s.DoubleClick(t.table, 0);  // the record-number column cannot be selected
  s.DoubleClick(t.table, 6);  // nor a column past the last
  EXPECT_EQ(t.table.HeaderBackColor(0), 0);
}

}  // namespace
}  // namespace vantrel
