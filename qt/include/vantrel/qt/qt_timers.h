#pragma once
// Timers for a control on a Qt thread: each timer is a QTimer living on the thread that
// created it, so its ticks come from that thread's event loop.
//
// While the factory is held (a modal prompt of the control is up), ticks are dropped: the
// control is then in the middle of a call and must not be entered again from one of its
// own timers. The factory must outlive the timers it made.

#include <memory>

#include "vantrel/timer.h"

namespace vantrel::qt {

class QtTimerFactory final : public TimerFactory {
 public:
  std::unique_ptr<Timer> CreateTimer() override;

  void Hold() { ++holds_; }
  void Release() {
    if (holds_ > 0) --holds_;
  }
  bool Held() const { return holds_ > 0; }

 private:
  int holds_ = 0;
};

// Holds a factory's timers for the lifetime of the guard.
class TimerHold {
 public:
  explicit TimerHold(QtTimerFactory* timers) : timers_(timers) {
    if (timers_ != nullptr) timers_->Hold();
  }
  ~TimerHold() {
    if (timers_ != nullptr) timers_->Release();
  }
  TimerHold(const TimerHold&) = delete;
  TimerHold& operator=(const TimerHold&) = delete;

 private:
  QtTimerFactory* timers_;
};

}  // namespace vantrel::qt
