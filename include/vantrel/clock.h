#pragma once
// The PC clock: local date and time of day, used for the stamp columns, time-stamp texts and
// export file names.

#include <cstdint>

namespace vantrel {

struct DateTime {
  int year = 2000;
  int month = 1;  // 1..12
  int day = 1;    // 1..31
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;

  friend bool operator==(const DateTime&, const DateTime&) = default;
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual DateTime Now() const = 0;
};

// The machine's local time.
class SystemClock final : public Clock {
 public:
  DateTime Now() const override;
};

}  // namespace vantrel
