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

TEST(Layout, ChartStartsAtTheTablesCornerWhateverTheSize) {
  for (int32_t w : {500, 3000, 12000}) {
    const ControlLayout l = LayoutControl(w, w / 2 + 2000, {200, 700});
    EXPECT_EQ(l.chart.left, l.grid.left);
    EXPECT_EQ(l.chart.top, l.grid.top);
    EXPECT_EQ(l.grid.left, 200);
  }
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
