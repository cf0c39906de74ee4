#pragma once
// The --duration option: a finite number of seconds up to a year. "nan" or "inf" would run
// forever, and a huge value overflows the clock and stops at once.

#include <CLI/CLI.hpp>

#include <cmath>
#include <string>

namespace vantrel::cli {

inline constexpr double kLongestDurationSeconds = 366.0 * 24 * 3600;

inline CLI::Validator DurationSeconds() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        double seconds = 0;
        try {
          size_t used = 0;
          seconds = std::stod(text, &used);
          if (used != text.size()) return "not a number of seconds: " + text;
        } catch (const std::exception&) {
          return "not a number of seconds: " + text;
        }
        if (!std::isfinite(seconds) || seconds < 0 || seconds > kLongestDurationSeconds) {
          return "the duration must be 0 to " +
                 std::to_string(static_cast<int64_t>(kLongestDurationSeconds)) +
                 " seconds: " + text;
        }
        return {};
      },
      "SECONDS");
}

}  // namespace vantrel::cli
