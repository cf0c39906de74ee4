#pragma once
// A real single-threaded event loop for command-line hosts: timers on the steady clock and
// callbacks when file descriptors become readable or writable. Post() may be called from
// any thread (or a signal handler may call RequestQuit) to wake the loop.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "vantrel/timer.h"

namespace vantrel {

class PollEventLoop final : public TimerFactory {
 public:
  enum FdEvents : short { kReadable = 1, kWritable = 2 };
  using FdCallback = std::function<void(int fd, short readyEvents)>;

  PollEventLoop();
  ~PollEventLoop() override;
  PollEventLoop(const PollEventLoop&) = delete;
  PollEventLoop& operator=(const PollEventLoop&) = delete;

  std::unique_ptr<Timer> CreateTimer() override;

  // Calls `callback` whenever `fd` is ready for `events`; watching an fd again replaces it.
  void WatchFd(int fd, short events, FdCallback callback);
  void UnwatchFd(int fd);

  // Runs `task` on the loop's thread at its next turn. Thread-safe.
  void Post(std::function<void()> task);

  // Runs until Quit() (or RequestQuit()) is called, or until `limit` has passed.
  void Run();
  void RunFor(std::chrono::milliseconds limit);
  // Ends Run() after the current turn. From the loop's thread.
  void Quit() { quit_ = true; }
  // Ends Run() from a signal handler or another thread (async-signal-safe).
  void RequestQuit();

 private:
  class PollTimer;
  friend class PollTimer;
  using TimePoint = std::chrono::steady_clock::time_point;

  void Turn(TimePoint deadline);
  void RunDueTimers();
  void DrainWakeups();

  struct Watch {
    int fd;
    short events;
    std::shared_ptr<FdCallback> callback;
  };
  std::vector<PollTimer*> timers_;
  std::vector<Watch> watches_;
  uint64_t nextTimerId_ = 0;
  bool quit_ = false;
  int wakeRead_ = -1;
  int wakeWrite_ = -1;
  std::mutex postedMutex_;
  std::vector<std::function<void()>> posted_;
};

}  // namespace vantrel
