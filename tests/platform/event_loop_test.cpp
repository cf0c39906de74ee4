#include <gtest/gtest.h>

#include <unistd.h>

#include "vantrel/manual_event_loop.h"
#include "vantrel/poll_event_loop.h"

namespace vantrel {
namespace {

TEST(ManualEventLoop, DueTimersTickInOrderWithTheClockAtTheirMoment) {
  ManualEventLoop loop;
  auto fast = loop.CreateTimer();
  auto slow = loop.CreateTimer();
  std::vector<std::pair<char, int64_t>> ticks;
  fast->SetTickHandler([&] { ticks.emplace_back('f', loop.ElapsedMs()); });
  slow->SetTickHandler([&] { ticks.emplace_back('s', loop.ElapsedMs()); });
  fast->SetInterval(300);
  slow->SetInterval(500);
  fast->SetEnabled(true);
  slow->SetEnabled(true);
  loop.Advance(1000);
  EXPECT_EQ(ticks, (std::vector<std::pair<char, int64_t>>{
                       {'f', 300}, {'s', 500}, {'f', 600}, {'f', 900}, {'s', 1000}}));
  EXPECT_EQ(loop.Clock().Now().second, 31);  // started at 08:15:30
}

TEST(ManualEventLoop, DisabledOrZeroPeriodTimersNeverTick) {
  ManualEventLoop loop;
  auto timer = loop.CreateTimer();
  int ticks = 0;
  timer->SetTickHandler([&] { ++ticks; });
  timer->SetInterval(100);
  loop.Advance(1000);
  timer->SetEnabled(true);
  timer->SetInterval(0);
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

TEST(PollEventLoop, TimersAndDescriptorsDriveTheLoopUntilQuit) {
  PollEventLoop loop;
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  auto timer = loop.CreateTimer();
  int ticks = 0;
  std::string received;
  timer->SetInterval(5);
  timer->SetTickHandler([&] {
    if (++ticks == 3) {
      const char c = 'x';
      ASSERT_EQ(write(fds[1], &c, 1), 1);
    }
  });
  loop.WatchFd(fds[0], PollEventLoop::kReadable, [&](int fd, short) {
    char c;
    if (read(fd, &c, 1) == 1) received.push_back(c);
    loop.Quit();
  });
  timer->SetEnabled(true);
  loop.RunFor(std::chrono::seconds(5));
  EXPECT_EQ(ticks, 3);
  EXPECT_EQ(received, "x");
  close(fds[0]);
  close(fds[1]);
}

TEST(PollEventLoop, PostedTasksRunOnTheLoop) {
  PollEventLoop loop;
  bool ran = false;
  loop.Post([&] {
    ran = true;
    loop.Quit();
  });
  loop.RunFor(std::chrono::seconds(5));
  EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace vantrel
