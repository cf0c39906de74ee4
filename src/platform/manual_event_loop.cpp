#include "vantrel/manual_event_loop.h"

#include <algorithm>
#include <functional>

#include "platform/basic_timer.h"

namespace vantrel {

class ManualEventLoop::ManualTimer final : public BasicTimer {
 public:
  ManualTimer(ManualEventLoop& loop, uint64_t id) : loop_(&loop), id_(id) {
    loop.timers_.push_back(this);
  }
  ~ManualTimer() override {
    if (loop_ != nullptr) std::erase(loop_->timers_, this);
  }

  bool Armed() const { return loop_ != nullptr && Ticking(); }
  int64_t Due() const { return due_; }
  uint64_t Id() const { return id_; }
  void Detach() { loop_ = nullptr; }
  void Tick() {
    due_ += Interval();
    RunHandler();
  }

 private:
  void Rearm() override {
    if (loop_ != nullptr) due_ = loop_->now_ + Interval();
  }

  ManualEventLoop* loop_;
  uint64_t id_;
  int64_t due_ = 0;
};

ManualEventLoop::~ManualEventLoop() {
  for (ManualTimer* timer : timers_)
    timer->Detach();
}

std::unique_ptr<Timer> ManualEventLoop::CreateTimer() {
  return std::make_unique<ManualTimer>(*this, nextId_++);
}

void ManualEventLoop::Advance(int64_t milliseconds) {
  const int64_t target = now_ + std::max<int64_t>(milliseconds, 0);
  for (;;) {
    ManualTimer* next = nullptr;
    for (ManualTimer* timer : timers_) {
      if (!timer->Armed() || timer->Due() > target) continue;
      if (next == nullptr || timer->Due() < next->Due() ||
          (timer->Due() == next->Due() && timer->Id() < next->Id())) {
        next = timer;
      }
    }
    if (next == nullptr) break;
    clock_.Advance(next->Due() - now_);
    now_ = next->Due();
    next->Tick();  // may create, destroy or re-arm timers
  }
  clock_.Advance(target - now_);
  now_ = target;
}

}  // namespace vantrel
