// Timers and descriptors of the POSIX loop are driven end to end by `vantrel run` (the
// history and Modbus command tests); what those cannot see is a handler ending the loop.

#include "vantrel/poll_event_loop.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(PollEventLoop, AHandlerEndsTheLoop) {
  PollEventLoop loop;
  auto timer = loop.CreateTimer();
  int ticks = 0;
  timer->SetInterval(5);
  timer->SetTickHandler([&] {
    if (++ticks == 3) loop.Quit();
  });
  timer->SetEnabled(true);
  loop.RunFor(std::chrono::seconds(5));
  EXPECT_EQ(ticks, 3);
}

}  // namespace
}  // namespace vantrel
