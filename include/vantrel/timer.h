#pragma once
// A timer as the control uses it: a period in milliseconds, enabled or not, and a tick
// handler. Disabling and re-enabling restarts the period; a period of 0 never ticks.

#include <cstdint>
#include <functional>
#include <memory>

namespace vantrel {

class Timer {
 public:
  virtual ~Timer() = default;
  virtual void SetInterval(int32_t milliseconds) = 0;
  virtual int32_t Interval() const = 0;
  virtual void SetEnabled(bool enabled) = 0;
  virtual bool Enabled() const = 0;
  virtual void SetTickHandler(std::function<void()> onTick) = 0;
};

class TimerFactory {
 public:
  virtual ~TimerFactory() = default;
  virtual std::unique_ptr<Timer> CreateTimer() = 0;
};

}  // namespace vantrel
