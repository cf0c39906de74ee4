#include "vantrel/manual_clock.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(ManualClock, AdvancesAcrossDayMonthAndYearEnds) {
  ManualClock clock({2026, 12, 31, 23, 59, 59, 500});
  clock.Advance(600);
  EXPECT_EQ(clock.Now(), (DateTime{2027, 1, 1, 0, 0, 0, 100}));
  clock.Set({2028, 2, 28, 12, 0, 0, 0});
  clock.Advance(24LL * 3600 * 1000);
  EXPECT_EQ(clock.Now(), (DateTime{2028, 2, 29, 12, 0, 0, 0}));
}

}  // namespace
}  // namespace vantrel
