#pragma once
// Timers on a clock that moves only when told: tests advance time and the due timers tick in
// order, so nothing ever sleeps.

#include <cstdint>
#include <memory>
#include <vector>

#include "vantrel/manual_clock.h"
#include "vantrel/timer.h"

namespace vantrel {

class ManualEventLoop final : public TimerFactory {
 public:
  explicit ManualEventLoop(DateTime start = {2026, 11, 15, 8, 15, 30, 0}) : clock_(start) {}
  ~ManualEventLoop() override;

  std::unique_ptr<Timer> CreateTimer() override;
  const ManualClock& Clock() const { return clock_; }

  // Moves time on by `milliseconds`, ticking every timer that falls due on the way, in the
  // order they fall due (timers due at the same moment tick in creation order).
  void Advance(int64_t milliseconds);
  int64_t ElapsedMs() const { return now_; }

 private:
  class ManualTimer;
  friend class ManualTimer;
  ManualClock clock_;
  int64_t now_ = 0;
  uint64_t nextId_ = 0;
  std::vector<ManualTimer*> timers_;
};

}  // namespace vantrel
