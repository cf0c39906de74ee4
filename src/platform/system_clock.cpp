#include <chrono>
#include <ctime>

#include "vantrel/clock.h"

namespace vantrel {

DateTime SystemClock::Now() const {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&seconds, &local);
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
  return {local.tm_year + 1900,
          local.tm_mon + 1,
          local.tm_mday,
          local.tm_hour,
          local.tm_min,
          local.tm_sec,
          static_cast<int>(ms.count() % 1000)};
}

}  // namespace vantrel
