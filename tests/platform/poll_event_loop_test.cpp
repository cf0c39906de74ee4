#include "vantrel/poll_event_loop.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <string>

namespace vantrel {
namespace {

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

}  // namespace
}  // namespace vantrel
