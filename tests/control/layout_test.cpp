#include "vantrel/layout.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(Layout, SixThousandByFourThousandTwips) {
  const ControlLayout l = LayoutControl(6000, 4000);
  EXPECT_EQ(l.frame.width, 5820);
  EXPECT_EQ(l.frame.height, 3835);
  EXPECT_EQ(l.grid.width, 5500);
  EXPECT_EQ(l.grid.height, 2665);
  EXPECT_EQ(l.chart.width, 5520);
  EXPECT_EQ(l.chart.height, 2685);
  EXPECT_EQ(l.bottomLineTop, 3460);
  EXPECT_EQ(l.infoButtonTop, 3385);
}

TEST(Layout, TableAndChartStartAtTheGivenCorner) {
  const ControlLayout l = LayoutControl(3000, 3500, {200, 700});
  EXPECT_EQ(l.grid, (TwipsRect{200, 700, 2500, 2165}));
  EXPECT_EQ(l.chart, (TwipsRect{200, 700, 2520, 2185}));
}

TEST(Layout, SizesBelowTheMarginsGiveZeroNotNegative) {
  const ControlLayout l = LayoutControl(100, 100);
  EXPECT_EQ(l.frame.width, 0);
  EXPECT_EQ(l.grid.width, 0);
  EXPECT_EQ(l.grid.height, 0);
  EXPECT_EQ(l.chart.height, 0);
  EXPECT_EQ(l.bottomLineTop, 0);
}

}  // namespace
}  // namespace vantrel
