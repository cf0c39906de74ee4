#include "vantrel/manual_event_loop.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

// Timers ticking in order with the clock at their moment are driven by the host walks
// (LiveTrace, ScriptedTrace); what those never have is a timer enabled without a period.
TEST(ManualEventLoop, DisabledAndPeriodlessTimersNeverTick) {
  ManualEventLoop loop;
  auto disabled = loop.CreateTimer();
  auto periodless = loop.CreateTimer();
  int ticks = 0;
  disabled->SetTickHandler([&] { ++ticks; });
  periodless->SetTickHandler([&] { ++ticks; });
  disabled->SetInterval(100);
  periodless->SetEnabled(true);
  loop.Advance(1000);
  EXPECT_EQ(ticks, 0);
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
