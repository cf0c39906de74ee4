#include "vantrel/manual_event_loop.h"

#include <algorithm>
#include <functional>

namespace vantrel {

class ManualEventLoop::ManualTimer final : public Timer {
 public:
  ManualTimer(ManualEventLoop& loop, uint64_t id) : loop_(&loop), id_(id) {
    loop.timers_.push_back(this);
  }
  ~ManualTimer() override {
    if (loop_ != nullptr) std::erase(loop_->timers_, this);
  }

  void SetInterval(int32_t milliseconds) override {
    interval_ = std::max(milliseconds, 0);
    Rearm();
  }
  int32_t Interval() const override { return interval_; }
  void SetEnabled(bool enabled) override {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    Rearm();
  }
  bool Enabled() const override { return enabled_; }
  void SetTickHandler(std::function<void()> onTick) override { onTick_ = std::move(onTick); }

  bool Armed() const { return loop_ != nullptr && enabled_ && interval_ > 0; }
  int64_t Due() const { return due_; }
  uint64_t Id() const { return id_; }
  void Detach() { loop_ = nullptr; }
  void Tick() {
    due_ += interval_;
    if (onTick_) onTick_();
  }

 private:
  void Rearm() {
    if (loop_ != nullptr) due_ = loop_->now_ + interval_;
  }

  ManualEventLoop* loop_;
  uint64_t id_;
  int32_t interval_ = 0;
  bool enabled_ = false;
  int64_t due_ = 0;
  std::function<void()> onTick_;
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
