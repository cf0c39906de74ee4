#pragma once
// What every timer implementation shares: the period, the enabled flag and the tick
// handler. A derived timer only decides when the next tick is due (Rearm).

#include <algorithm>
#include <cstdint>
#include <functional>

#include "vantrel/timer.h"

namespace vantrel {

class BasicTimer : public Timer {
 public:
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

 protected:
  // Called when the period starts again: on enabling and on a new interval.
  virtual void Rearm() = 0;
  bool Ticking() const { return enabled_ && interval_ > 0; }
  void RunHandler() {
    if (onTick_) onTick_();
  }

 private:
  int32_t interval_ = 0;
  bool enabled_ = false;
  std::function<void()> onTick_;
};

}  // namespace vantrel
