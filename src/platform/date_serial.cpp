#include "platform/date_serial.h"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace vantrel {
namespace {

// Days from 1 January 1970 of a proleptic Gregorian date.
int64_t DaysFromCivil(int64_t y, int64_t m, int64_t d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

// The proleptic Gregorian date `days` after 1 January 1970.
void CivilFromDays(int64_t days, int& year, int& month, int& day) {
  days += 719468;
  const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const int64_t doe = days - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  year = static_cast<int>(yoe + era * 400 + (month <= 2 ? 1 : 0));
}

// 30 December 1899 counted from 1 January 1970.
constexpr int64_t kSerialEpoch = -25569;

int DaysInMonth(int year, int month) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[month - 1];
}

// Reads numbers separated by `separator` into `parts`; false unless all are digits.
bool SplitNumbers(std::string_view text, char separator, int (&parts)[3], int& count,
                  int (&digits)[3]) {
  count = 0;
  while (true) {
    if (count == 3) return false;
    const size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    if (part.empty() || part.size() > 4) return false;
    int value = 0;
    const auto [ptr, ec] = std::from_chars(part.data(), part.data() + part.size(), value);
    if (ec != std::errc() || ptr != part.data() + part.size()) return false;
    digits[count] = static_cast<int>(part.size());
    parts[count++] = value;
    if (end == std::string_view::npos) return true;
    text.remove_prefix(end + 1);
  }
}

std::optional<double> DatePart(std::string_view text) {
  int parts[3];
  int digits[3];
  int count = 0;
  if (!SplitNumbers(text, '/', parts, count, digits) || count != 3) return std::nullopt;
  int year = parts[2];
  if (digits[2] <= 2) year += year < 30 ? 2000 : 1900;
  return DaySerial(year, parts[1], parts[0]);
}

std::optional<double> TimePart(std::string_view text) {
  int parts[3] = {0, 0, 0};
  int digits[3];
  int count = 0;
  if (!SplitNumbers(text, ':', parts, count, digits) || count < 2) return std::nullopt;
  return TimeOfDaySerial(parts[0], parts[1], parts[2]);
}

std::string_view Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

}  // namespace

std::optional<double> DaySerial(int year, int month, int day) {
  if (month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month) || year > 9999)
    return std::nullopt;
  return static_cast<double>(DaysFromCivil(year, month, day) - kSerialEpoch);
}

std::optional<double> TimeOfDaySerial(int hour, int minute, int second) {
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return (hour * 3600 + minute * 60 + second) / 86400.0;
}

double DateSerial(const DateTime& when) {
  const auto days =
      static_cast<double>(DaysFromCivil(when.year, when.month, when.day) - kSerialEpoch);
  return days + (when.hour * 3600 + when.minute * 60 + when.second) / 86400.0;
}

std::optional<double> DateSerialFromText(std::string_view text) {
  text = Trimmed(text);
  if (text.empty()) return std::nullopt;
  const size_t blank = text.find(' ');
  if (blank == std::string_view::npos) {
    if (text.find('/') != std::string_view::npos) return DatePart(text);
    return TimePart(text);
  }
  const auto date = DatePart(text.substr(0, blank));
  const auto time = TimePart(Trimmed(text.substr(blank)));
  if (!date || !time) return std::nullopt;
  return *date + *time;
}

DateTime DateTimeFromSerial(double serial) {
  int64_t days = static_cast<int64_t>(std::floor(serial));
  int64_t seconds = std::llround((serial - static_cast<double>(days)) * 86400.0);
  if (seconds >= 86400) {
    ++days;
    seconds -= 86400;
  }
  DateTime when;
  CivilFromDays(days + kSerialEpoch, when.year, when.month, when.day);
  when.hour = static_cast<int>(seconds / 3600);
  when.minute = static_cast<int>(seconds / 60 % 60);
  when.second = static_cast<int>(seconds % 60);
  when.millisecond = 0;
  return when;
}

}  // namespace vantrel
