#include "vantrel/manual_clock.h"

#include <chrono>

namespace vantrel {

void ManualClock::Advance(int64_t milliseconds) {
  using namespace std::chrono;
  const sys_days day = year_month_day{year{now_.year}, month{static_cast<unsigned>(now_.month)},
                                      std::chrono::day{static_cast<unsigned>(now_.day)}};
  const auto time = hours{now_.hour} + minutes{now_.minute} + seconds{now_.second} +
                    std::chrono::milliseconds{now_.millisecond + milliseconds};
  const sys_time<std::chrono::milliseconds> moved = day + time;
  const sys_days newDay = floor<days>(moved);
  const year_month_day ymd{newDay};
  const hh_mm_ss hms{moved - newDay};
  now_ = {static_cast<int>(ymd.year()),
          static_cast<int>(static_cast<unsigned>(ymd.month())),
          static_cast<int>(static_cast<unsigned>(ymd.day())),
          static_cast<int>(hms.hours().count()),
          static_cast<int>(hms.minutes().count()),
          static_cast<int>(hms.seconds().count()),
          static_cast<int>(hms.subseconds().count())};
}

}  // namespace vantrel
