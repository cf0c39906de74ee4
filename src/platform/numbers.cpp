#include "platform/numbers.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>

#include "platform/runtime_error.h"

namespace vantrel {
namespace {

bool IsSkippedBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n';
}

int DigitValue(char c, int base) {
  int v = -1;
  if (c >= '0' && c <= '9') v = c - '0';
  if (c >= 'a' && c <= 'f') v = c - 'a' + 10;
  if (c >= 'A' && c <= 'F') v = c - 'A' + 10;
  return v < base ? v : -1;
}

// Reads a "&H" / "&O" literal starting at text[0] == '&'. Returns nothing when it is not one.
std::optional<double> ReadRadixLiteral(std::string_view text, size_t& pos) {
  if (pos + 1 >= text.size() || text[pos] != '&') return std::nullopt;
  const char kind = text[pos + 1];
  const int base = (kind == 'h' || kind == 'H') ? 16 : (kind == 'o' || kind == 'O') ? 8 : 0;
  if (base == 0) return std::nullopt;
  pos += 2;
  uint64_t value = 0;
  bool any = false;
  while (pos < text.size()) {
    if (IsSkippedBlank(text[pos])) {
      ++pos;
      continue;
    }
    const int d = DigitValue(text[pos], base);
    if (d < 0) break;
    value = value * static_cast<uint64_t>(base) + static_cast<uint64_t>(d);
    if (value > 0xFFFFFFFFull) throw RuntimeError::Overflow();
    any = true;
    ++pos;
  }
  if (!any) return 0.0;
  if (value <= 0xFFFF) return static_cast<double>(static_cast<int16_t>(value));
  return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(value)));
}

// Collects the decimal numeric prefix (sign, digits, fraction, exponent) into `out` with the
// blanks removed; `pos` ends after the last character that belongs to it.
void CollectDecimal(std::string_view text, size_t& pos, std::string& out, char separator) {
  auto skip = [&] {
    while (pos < text.size() && IsSkippedBlank(text[pos]))
      ++pos;
  };
  auto digits = [&] {
    bool any = false;
    for (skip(); pos < text.size() && text[pos] >= '0' && text[pos] <= '9'; skip()) {
      out.push_back(text[pos++]);
      any = true;
    }
    return any;
  };
  skip();
  if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) out.push_back(text[pos++]);
  bool mantissa = digits();
  skip();
  if (pos < text.size() && text[pos] == separator) {
    ++pos;
    out.push_back('.');
    mantissa = digits() || mantissa;
  }
  if (!mantissa) {
    out.clear();
    return;
  }
  skip();
  if (pos < text.size() &&
      (text[pos] == 'e' || text[pos] == 'E' || text[pos] == 'd' || text[pos] == 'D')) {
    const size_t mark = pos;
    const size_t keep = out.size();
    ++pos;
    out.push_back('e');
    skip();
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) out.push_back(text[pos++]);
    if (!digits()) {  // a bare "E" is not part of the number
      pos = mark;
      out.resize(keep);
    }
  }
}

double ParseCollected(const std::string& collected) {
  if (collected.empty()) return 0.0;
  const double v = std::strtod(collected.c_str(), nullptr);
  if (std::isinf(v)) throw RuntimeError::Overflow();
  return v;
}

template <typename Int>
Int RoundTo(double value) {
  if (std::isnan(value)) throw RuntimeError::Overflow();
  double whole = std::floor(value);
  const double fraction = value - whole;
  if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2.0) != 0.0)) whole += 1.0;
  if (whole < static_cast<double>(std::numeric_limits<Int>::min()) ||
      whole > static_cast<double>(std::numeric_limits<Int>::max())) {
    throw RuntimeError::Overflow();
  }
  return static_cast<Int>(whole);
}

// The whole text as a number, or nothing when anything but blanks surrounds it.
std::optional<double> WholeNumber(std::string_view text, char separator) {
  size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return std::nullopt;
  size_t end = text.find_last_not_of(" \t") + 1;
  std::string_view body = text.substr(begin, end - begin);
  size_t pos = 0;
  if (auto radix = ReadRadixLiteral(body, pos)) {
    if (pos != body.size() || body.size() == 2) return std::nullopt;
    return radix;
  }
  std::string collected;
  pos = 0;
  // Blanks inside a strict number are not allowed: collect from the text without them.
  for (char c : body) {
    if (IsSkippedBlank(c)) return std::nullopt;
  }
  CollectDecimal(body, pos, collected, separator);
  if (collected.empty() || pos != body.size()) return std::nullopt;
  return ParseCollected(collected);
}

}  // namespace

double Val(std::string_view text) {
  size_t pos = 0;
  while (pos < text.size() && IsSkippedBlank(text[pos]))
    ++pos;
  if (auto radix = ReadRadixLiteral(text, pos)) return *radix;
  std::string collected;
  CollectDecimal(text, pos, collected, '.');
  return ParseCollected(collected);
}

int16_t RoundToInt16(double value) {
  return RoundTo<int16_t>(value);
}
int32_t RoundToInt32(double value) {
  return RoundTo<int32_t>(value);
}

int16_t StrictToInt16(std::string_view text) {
  const auto number = WholeNumber(text, '.');
  if (!number) throw RuntimeError::TypeMismatch();
  return RoundToInt16(*number);
}

bool IsNumeric(std::string_view text, char decimalSeparator) {
  return NumberValue(text, decimalSeparator).has_value();
}

std::optional<double> NumberValue(std::string_view text, char decimalSeparator) {
  try {
    return WholeNumber(text, decimalSeparator);
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

}  // namespace vantrel
