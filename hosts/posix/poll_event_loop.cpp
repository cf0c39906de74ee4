#include "vantrel/poll_event_loop.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/basic_timer.h"

namespace vantrel {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class PollEventLoop::PollTimer final : public BasicTimer {
 public:
  PollTimer(PollEventLoop& loop, uint64_t id) : loop_(&loop), id_(id) {
    loop.timers_.push_back(this);
  }
  ~PollTimer() override {
    if (loop_ != nullptr) std::erase(loop_->timers_, this);
  }

  bool Armed() const { return loop_ != nullptr && Ticking(); }
  TimePoint Due() const { return due_; }
  uint64_t Id() const { return id_; }
  void Detach() { loop_ = nullptr; }
  void Tick(TimePoint now) {
    // A late tick does not cause a burst of catch-up ticks.
    due_ = std::max(due_ + milliseconds(Interval()), now);
    RunHandler();
  }

 private:
  void Rearm() override { due_ = steady_clock::now() + milliseconds(Interval()); }

  PollEventLoop* loop_;
  uint64_t id_;
  TimePoint due_{};
};

PollEventLoop::PollEventLoop() {
  int fds[2];
  if (pipe2(fds, O_NONBLOCK | O_CLOEXEC) == 0) {
    wakeRead_ = fds[0];
    wakeWrite_ = fds[1];
  }
}

PollEventLoop::~PollEventLoop() {
  for (PollTimer* timer : timers_)
    timer->Detach();
  if (wakeRead_ >= 0) close(wakeRead_);
  if (wakeWrite_ >= 0) close(wakeWrite_);
}

std::unique_ptr<Timer> PollEventLoop::CreateTimer() {
  return std::make_unique<PollTimer>(*this, nextTimerId_++);
}

void PollEventLoop::WatchFd(int fd, short events, FdCallback callback) {
  UnwatchFd(fd);
  watches_.push_back({fd, events, std::make_shared<FdCallback>(std::move(callback))});
}

void PollEventLoop::UnwatchFd(int fd) {
  std::erase_if(watches_, [fd](const Watch& w) { return w.fd == fd; });
}

void PollEventLoop::Post(std::function<void()> task) {
  {
    std::lock_guard lock(postedMutex_);
    posted_.push_back(std::move(task));
  }
  const char byte = 'p';
  if (wakeWrite_ >= 0) [[maybe_unused]]
    auto n = write(wakeWrite_, &byte, 1);
}

void PollEventLoop::RequestQuit() {
  const char byte = 'q';
  if (wakeWrite_ >= 0) [[maybe_unused]]
    auto n = write(wakeWrite_, &byte, 1);
}

void PollEventLoop::Run() {
  quit_ = false;
  while (!quit_)
    Turn(TimePoint::max());
}

void PollEventLoop::RunFor(milliseconds limit) {
  quit_ = false;
  const TimePoint deadline = steady_clock::now() + limit;
  while (!quit_ && steady_clock::now() < deadline)
    Turn(deadline);
}

void PollEventLoop::DrainWakeups() {
  char buffer[64];
  ssize_t n;
  while ((n = read(wakeRead_, buffer, sizeof buffer)) > 0) {
    if (std::find(buffer, buffer + n, 'q') != buffer + n) quit_ = true;
  }
  std::vector<std::function<void()>> tasks;
  {
    std::lock_guard lock(postedMutex_);
    tasks.swap(posted_);
  }
  for (auto& task : tasks)
    task();
}

void PollEventLoop::RunDueTimers() {
  const TimePoint now = steady_clock::now();
  // Tick each timer due now once, earliest first; handlers may change the timer list.
  std::vector<std::pair<TimePoint, uint64_t>> due;
  for (PollTimer* t : timers_) {
    if (t->Armed() && t->Due() <= now) due.emplace_back(t->Due(), t->Id());
  }
  std::sort(due.begin(), due.end());
  for (const auto& [when, id] : due) {
    auto it = std::find_if(timers_.begin(), timers_.end(),
                           [id = id](PollTimer* t) { return t->Id() == id; });
    if (it != timers_.end() && (*it)->Armed() && (*it)->Due() <= now) (*it)->Tick(now);
    if (quit_) return;
  }
}

void PollEventLoop::Turn(TimePoint deadline) {
  TimePoint wake = deadline;
  for (PollTimer* t : timers_) {
    if (t->Armed()) wake = std::min(wake, t->Due());
  }
  int timeoutMs = -1;
  if (wake != TimePoint::max()) {
    const auto wait = std::chrono::ceil<milliseconds>(wake - steady_clock::now());
    timeoutMs = static_cast<int>(std::clamp<int64_t>(wait.count(), 0, 60'000));
  }
  std::vector<pollfd> fds;
  fds.push_back({wakeRead_, POLLIN, 0});
  for (const Watch& w : watches_) {
    short events = 0;
    if (w.events & kReadable) events |= POLLIN;
    if (w.events & kWritable) events |= POLLOUT;
    fds.push_back({w.fd, events, 0});
  }
  const int ready = poll(fds.data(), fds.size(), timeoutMs);
  if (ready < 0 && errno != EINTR) return;
  if (ready > 0) {
    if (fds[0].revents & POLLIN) DrainWakeups();
    // Copy the callbacks first: a callback may unwatch or watch descriptors.
    std::vector<std::pair<std::shared_ptr<FdCallback>, std::pair<int, short>>> calls;
    for (size_t i = 1; i < fds.size(); ++i) {
      if (fds[i].revents == 0) continue;
      short readyEvents = 0;
      if (fds[i].revents & (POLLIN | POLLHUP | POLLERR)) readyEvents |= kReadable;
      if (fds[i].revents & POLLOUT) readyEvents |= kWritable;
      calls.push_back({watches_[i - 1].callback, {fds[i].fd, readyEvents}});
    }
    for (auto& [callback, args] : calls) {
      if (quit_) return;
      (*callback)(args.first, args.second);
    }
  }
  if (!quit_) RunDueTimers();
}

}  // namespace vantrel
