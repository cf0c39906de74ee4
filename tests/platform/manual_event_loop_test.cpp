#include "vantrel/manual_event_loop.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

// A disabled timer and one without a period never tick.
TEST(ManualEventLoop, DueTimersTickInOrderWithTheClockAtTheirMoment) {
  ManualEventLoop loop;
  auto fast = loop.CreateTimer();
  auto slow = loop.CreateTimer();
  auto disabled = loop.CreateTimer();
  auto periodless = loop.CreateTimer();
  std::vector<std::pair<char, int64_t>> ticks;
  fast->SetTickHandler([&] { ticks.emplace_back('f', loop.ElapsedMs()); });
  slow->SetTickHandler([&] { ticks.emplace_back('s', loop.ElapsedMs()); });
  disabled->SetTickHandler([&] { ticks.emplace_back('d', loop.ElapsedMs()); });
  periodless->SetTickHandler([&] { ticks.emplace_back('p', loop.ElapsedMs()); });
  fast->SetInterval(300);
  slow->SetInterval(500);
  disabled->SetInterval(100);
  fast->SetEnabled(true);
  slow->SetEnabled(true);
  periodless->SetEnabled(true);
  loop.Advance(1000);
  EXPECT_EQ(ticks, (std::vector<std::pair<char, int64_t>>{
                       {'f', 300}, {'s', 500}, {'f', 600}, {'f', 900}, {'s', 1000}}));
  EXPECT_EQ(loop.Clock().Now().second, 31);  // started at 08:15:30
}

TEST(ManualEventLoop, AHandlerMayStopItsOwnTimerOrStartAnother) {
  ManualEventLoop loop;
  auto first = loop.CreateTimer();
  auto second = loop.CreateTimer();
  int firstTicks = 0;
  int secondTicks = 0;
  first->SetInterval(100);
  second->SetInterval(100);
  first->SetTickHandler([&] {
    ++firstTicks;
    first->SetEnabled(false);
    second->SetEnabled(true);
  });
  second->SetTickHandler([&] { ++secondTicks; });
  first->SetEnabled(true);
  loop.Advance(350);
  EXPECT_EQ(firstTicks, 1);
  EXPECT_EQ(secondTicks, 2);  // started at 100: ticks at 200 and 300
}

}  // namespace
}  // namespace vantrel
