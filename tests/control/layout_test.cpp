#include "vantrel/layout.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(Layout, MarginsCornerAndSizesBelowTheMargins) {
  ControlLayout l = LayoutControl(6000, 4000);
  EXPECT_EQ(l.frame.width, 5820);
  EXPECT_EQ(l.frame.height, 3835);
  EXPECT_EQ(l.grid.width, 5500);
  EXPECT_EQ(l.grid.height, 2665);
  EXPECT_EQ(l.bottomLineTop, 3460);
  EXPECT_EQ(l.infoButtonTop, 3385);
  l = LayoutControl(3000, 3500, {200, 700});
  EXPECT_EQ(l.grid, (TwipsRect{200, 700, 2500, 2165}));
  EXPECT_EQ(l.chart, (TwipsRect{200, 700, 2520, 2185}));
  // Sizes below the margins give zero, not negative.
  l = LayoutControl(100, 100);
  for (const int32_t size :
       {l.frame.width, l.grid.width, l.grid.height, l.chart.height, l.bottomLineTop})
    EXPECT_EQ(size, 0);
}

}  // namespace
}  // namespace vantrel
