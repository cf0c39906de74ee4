#include "decoding/stamps.h"

namespace vantrel {
namespace {

void AppendTwoDigits(std::string& out, int value) {
  value = ((value % 100) + 100) % 100;
  out.push_back(static_cast<char>('0' + value / 10));
  out.push_back(static_cast<char>('0' + value % 10));
}

std::string Join(int a, int b, int c, char separator) {
  std::string out;
  out.reserve(8);
  AppendTwoDigits(out, a);
  out.push_back(separator);
  AppendTwoDigits(out, b);
  out.push_back(separator);
  AppendTwoDigits(out, c);
  return out;
}

}  // namespace

std::string FormatStatusDate(const DateTime& now) {
  return Join(now.day, now.month, now.year, '/');
}

std::string FormatStatusTime(const DateTime& now) {
  return Join(now.hour, now.minute, now.second, ':');
}

}  // namespace vantrel
