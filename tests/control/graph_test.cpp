// The graph view and the column selection, on a table built from a hand-made description.

#include "output/graph.h"

#include <gtest/gtest.h>

#include <string>

#include "output/output_steps.h"
#include "support/module_fixture.h"

namespace vantrel {
namespace {

using testing::ModuleFixture;

constexpr int16_t kWord = 4;

struct GraphFixture : ModuleFixture {
  GraphFixture() {
    Define(1, kWord, 0, 0, "Level", "d");
    Define(2, kWord, 0, 1, "Flow", "d");
    Build();  // table columns 4 (Level) and 5 (Flow), 6 columns in all
  }
  void AddRows(int count) {
    for (int i = 1; i <= count; ++i)
      AddTextRow({std::to_string(i * 10), i % 2 ? "abc" : std::to_string(-i)});
  }
};

TEST(Graph, WithoutSelectionEveryDataColumnIsSelectedAndDrawn) {
  GraphFixture f;
  f.AddRows(5);
  ClickGraphButton(f.m);
  EXPECT_TRUE(f.m.GraphShown);
  EXPECT_EQ(f.m.surface.graphButton.caption, "Grid");
  EXPECT_FALSE(f.m.surface.gridVisible);
  EXPECT_TRUE(f.m.surface.chartVisible);
  EXPECT_EQ(f.m.grid.HeaderBackColor(4), kColorYellow);
  EXPECT_EQ(f.m.grid.HeaderBackColor(5), kColorYellow);
  ASSERT_EQ(f.m.chart.SeriesCount(), 2);
  EXPECT_EQ(f.m.chart.Series(1).label, "Level");
  ASSERT_EQ(f.m.chart.PointCount(), 20);
  // Five rows fill points 1..5 from the left; the rest stay empty.
  EXPECT_EQ(f.m.chart.Value(1, 1), 10.0);
  EXPECT_EQ(f.m.chart.Value(1, 5), 50.0);
  EXPECT_FALSE(f.m.chart.Value(1, 6).has_value());
  EXPECT_EQ(f.m.chart.PointLabel(5), "5");
  EXPECT_EQ(f.m.chart.PointLabel(6), "");
  // Texts that are not numbers are drawn as 0.
  EXPECT_EQ(f.m.chart.Value(2, 1), 0.0);
  EXPECT_EQ(f.m.chart.Value(2, 2), -2.0);

  ClickGraphButton(f.m);
  EXPECT_FALSE(f.m.GraphShown);
  EXPECT_EQ(f.m.surface.graphButton.caption, "Graph");
  EXPECT_EQ(f.m.grid.HeaderBackColor(4), kColorYellow) << "the selection stays";
}

TEST(Graph, OnlySelectedColumnsBecomeSeries) {
  GraphFixture f;
  f.AddRows(3);
  PressGrid(f.m, 10);
  DoubleClickGrid(f.m, 5);
  EXPECT_EQ(f.m.grid.HeaderBackColor(5), kColorYellow);
  ClickGraphButton(f.m);
  ASSERT_EQ(f.m.chart.SeriesCount(), 1);
  EXPECT_EQ(f.m.chart.Series(1).label, "Flow");
  EXPECT_EQ(f.m.grid.HeaderBackColor(4), 0);
}

// The graph shows the newest MaxGraph rows. The label step follows MaxGraph: every point up
// to 20, every 5th up to 100, every 10th up to 500, every 20th above; the step counts row
// numbers, not point positions. (Fewer rows than points: see the test above.)
TEST(Graph, NewestRowsWithLabelStepsThatFollowTheNumberOfPoints) {
  struct Case {
    int32_t maxGraph;
    int rows;
    int step;
  };
  for (const Case c : {Case{20, 43, 1}, Case{100, 300, 5}, Case{101, 250, 10}, Case{500, 700, 10},
                       Case{501, 700, 20}}) {
    GraphFixture f;
    f.m.props.MaxGraph = c.maxGraph;
    f.m.props.MaxRows = c.rows;
    f.AddRows(c.rows);
    ClickGraphButton(f.m);
    ASSERT_EQ(f.m.chart.PointCount(), c.maxGraph);
    const int start = c.rows - c.maxGraph;
    for (int i = 1; i <= c.maxGraph; ++i) {
      const int row = start + i;
      EXPECT_EQ(f.m.chart.Value(1, i), row * 10.0) << "point " << i;
      EXPECT_EQ(f.m.chart.PointLabel(i), row % c.step == 0 ? std::to_string(row) : "")
          << "MaxGraph " << c.maxGraph << ", point " << i;
    }
  }
}

TEST(Graph, RowsAddedWhileShownRefreshTheGraph) {
  GraphFixture f;
  f.AddRows(2);
  ClickGraphButton(f.m);
  f.AddRows(1);
  RefreshGraph(f.m);
  EXPECT_EQ(f.m.chart.Value(1, 3), 10.0);
}

TEST(Graph, TableWithoutDataColumnsStaysInTableView) {
  ModuleFixture f;
  f.Build();
  ClickGraphButton(f.m);
  EXPECT_FALSE(f.m.GraphShown);
  ASSERT_EQ(f.prompts.Messages().size(), 1u);
  EXPECT_EQ(f.prompts.Messages()[0].text,
            "No data columns selected for the graph !\r\rDouble-click on the data column header "
            "to select it.");
  EXPECT_EQ(f.prompts.Messages()[0].title, "Show graph");
}

TEST(ColumnSelection, DoubleClickTogglesOnlyAfterAHeaderPress) {
  GraphFixture f;
  f.AddRows(1);
  PressGrid(f.m, f.m.grid.RowHeight() + 5);  // a data row
  DoubleClickGrid(f.m, 4);
  EXPECT_EQ(f.m.grid.HeaderBackColor(4), 0);
  PressGrid(f.m, 5);
  DoubleClickGrid(f.m, 4);
  EXPECT_EQ(f.m.grid.HeaderBackColor(4), kColorYellow);
  PressGrid(f.m, 5);
  DoubleClickGrid(f.m, 4);
  EXPECT_EQ(f.m.grid.HeaderBackColor(4), 0);
  PressGrid(f.m, 5);
  DoubleClickGrid(f.m, 0);  // the record-number column cannot be selected
  DoubleClickGrid(f.m, 6);  // nor a column past the last
  EXPECT_EQ(f.m.grid.HeaderBackColor(0), 0);
}

}  // namespace
}  // namespace vantrel
