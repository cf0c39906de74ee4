#pragma once
// A clock that stands still until told to move: tests and simulations set and advance it.

#include <cstdint>

#include "vantrel/clock.h"

namespace vantrel {

class ManualClock final : public Clock {
 public:
  explicit ManualClock(DateTime start = {2026, 11, 15, 8, 15, 30, 0}) : now_(start) {}
  DateTime Now() const override { return now_; }
  void Set(const DateTime& now) { now_ = now; }
  void Advance(int64_t milliseconds);

 private:
  DateTime now_;
};

}  // namespace vantrel
