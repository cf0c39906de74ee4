#include "decoding/field_readers.h"

#include <array>
#include <cstddef>

#include "platform/date_serial.h"
#include "platform/runtime_error.h"

namespace vantrel {
namespace {

constexpr int64_t kTwoTo32 = int64_t{1} << 32;

// The register as the readers see it: 0 .. 2^32 - 1. Conversion to uint32_t is modulo 2^32,
// which is exactly "a negative value plus 2^32" for every 32-bit input.
constexpr uint32_t Unsigned(int32_t value) {
  return static_cast<uint32_t>(value);
}

// A wide value taken unsigned; false when it is not a 32-bit register value.
bool WideUnsigned(int64_t value, uint32_t& out) {
  if (value < 0) value += kTwoTo32;
  if (value < 0 || value >= kTwoTo32) return false;
  out = static_cast<uint32_t>(value);
  return true;
}

// Decimal digits of `value` written backwards from `end`; returns the first digit.
char* WriteDecimal(char* end, uint32_t value) {
  do {
    *--end = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  return end;
}

char* WriteTwoDigits(char* out, int value) {
  out[0] = static_cast<char>('0' + value / 10 % 10);
  out[1] = static_cast<char>('0' + value % 10);
  return out + 2;
}

// Left(x, n) / Right(x, n) of the platform refuse a negative length.
RuntimeError InvalidLength() {
  return {5, "Invalid procedure call or argument"};
}

}  // namespace

std::string ReadString(int32_t value, ErrorSink&) {
  const uint32_t u = Unsigned(value);
  return {static_cast<char>(u >> 24), static_cast<char>(u >> 16), static_cast<char>(u >> 8),
          static_cast<char>(u)};
}

int16_t ReadNible(int16_t index, int32_t value, ErrorSink& errors) {
  if (index < 0 || index > 8) {
    errors.ReportError("Error in ReadNible function.");
    return 0;
  }
  if (index == 8) return 0;  // one past the register's nibbles: never filled, reads 0
  return static_cast<int16_t>((Unsigned(value) >> (4 * index)) & 0xFu);
}

int16_t ReadByte(int16_t index, int32_t value, ErrorSink& errors) {
  if (index < 0 || index > 4) {
    errors.ReportError("Error in ReadByte function.");
    return 0;
  }
  if (index == 4) return 0;
  return static_cast<int16_t>((Unsigned(value) >> (8 * index)) & 0xFFu);
}

int32_t Read2Bytes(int16_t index, int32_t value, ErrorSink& errors) {
  if (index < 0 || index > 2) {
    errors.ReportError("Error in Read2Bytes function.");
    return 0;
  }
  if (index == 2) return 0;
  return static_cast<int32_t>((Unsigned(value) >> (16 * index)) & 0xFFFFu);
}

std::string ReadASCII(int16_t count, int64_t value, bool raw, ErrorSink& errors) {
  uint32_t u = 0;
  if (count > 5 || !WideUnsigned(value, u)) {
    errors.ReportError("Error in ReadASCII function.");
    return {};
  }
  std::array<char, 7> text{};
  size_t length = 0;
  if (!raw) text[length++] = '\'';
  for (int i = count - 1; i >= 0; --i) {
    const uint32_t code = i == 4 ? 0 : (u >> (8 * i)) & 0xFFu;
    text[length++] = static_cast<char>(code < 32 ? 127 : code);
  }
  if (!raw) text[length++] = '\'';
  return {text.data(), length};
}

std::string ReadMedia(int64_t value, ErrorSink& errors) {
  uint32_t u = 0;
  if (!WideUnsigned(value, u) || (u & 0xFFFFu) > 32767) {
    // The address goes through a signed 16-bit integer.
    errors.ReportError("Error in ReadMedia function.");
    return {};
  }
  std::array<char, 8> text{};
  char* const end = text.data() + text.size();
  char* first = WriteDecimal(end, u & 0xFFFFu);
  char letter = '\0';
  switch ((u >> 16) & 0xFFu) {
    case 3:
      letter = 'F';
      break;
    case 5:
      letter = 'R';
      break;
    case 18:
      letter = 'C';
      break;
    case 19:
      letter = 'T';
      break;
    case 20:
      letter = 'I';
      break;
    case 21:
      letter = 'O';
      break;
    default:
      break;
  }
  if (letter != '\0') {
    *--first = ' ';
    *--first = letter;
  }
  return {first, static_cast<size_t>(end - first)};
}

std::string FormatBinary(int32_t value, int16_t width) {
  if (width < 0) throw InvalidLength();
  // Thirteen zeros, then three binary digits per octal digit of the 32-bit pattern (at most
  // eleven octal digits).
  constexpr int kPad = 13;
  std::array<char, kPad + 33> digits{};
  const uint32_t u = Unsigned(value);
  int octalDigits = 1;
  while (octalDigits < 11 && (u >> (3 * octalDigits)) != 0)
    ++octalDigits;
  const int length = kPad + 3 * octalDigits;
  for (int i = 0; i < length; ++i) {
    const int bit = length - 1 - i;  // bit number of position i; the pad lies above bit 32
    digits[static_cast<size_t>(i)] = bit < 32 && ((u >> bit) & 1u) != 0 ? '1' : '0';
  }
  const int keep = width < length ? width : length;
  const char* first = digits.data() + (length - keep);
  if (width != 16) return {first, static_cast<size_t>(keep)};
  // Width 16 always keeps sixteen digits: two groups of eight.
  std::string text;
  text.reserve(17);
  text.append(first, 8);
  text += ' ';
  text.append(first + 8, 8);
  return text;
}

StampShape StampShapeOf(std::string_view letter) {
  if (letter.size() != 1) return StampShape::Both;
  if (letter[0] == 'h' || letter[0] == 'H') return StampShape::TimeOnly;
  if (letter[0] == 'd' || letter[0] == 'D') return StampShape::DateOnly;
  return StampShape::Both;
}

std::string FormatTimeValue(std::string_view letter, int32_t value, const Clock& clock) {
  std::string text;
  AssignTimeValue(text, StampShapeOf(letter), value, clock);
  return text;
}

std::optional<double> AssignTimeValue(std::string& out, StampShape shape, int32_t value,
                                      const Clock& clock) {
  if (value < 0) {
    out = "Invalid time";
    return std::nullopt;
  }
  const auto v = static_cast<uint32_t>(value);
  // Every field is below 100, so its two digits read back as the field.
  const auto month = static_cast<int>(v / 100000000);
  const auto day = static_cast<int>(v % 100000000 / 1000000);
  const auto hour = static_cast<int>(v % 1000000 / 10000);
  const auto minute = static_cast<int>(v % 10000 / 100);
  const auto second = static_cast<int>(v % 100);
  std::array<char, 17> text{};
  char* o = text.data();
  std::optional<double> serial = 0.0;
  if (shape != StampShape::TimeOnly) {
    // The controller's stamp has no year: the PC's stands in for it, read back as a year
    // below 30 in the 2000s.
    const auto year = static_cast<int>(static_cast<uint32_t>(clock.Now().year) % 100);
    o = WriteTwoDigits(o, day);
    *o++ = '/';
    o = WriteTwoDigits(o, month);
    *o++ = '/';
    o = WriteTwoDigits(o, year);
    if (shape == StampShape::Both) *o++ = ' ';
    serial = DaySerial(year + (year < 30 ? 2000 : 1900), month, day);
  }
  if (shape != StampShape::DateOnly) {
    o = WriteTwoDigits(o, hour);
    *o++ = ':';
    o = WriteTwoDigits(o, minute);
    *o++ = ':';
    o = WriteTwoDigits(o, second);
    const auto time = TimeOfDaySerial(hour, minute, second);
    serial = serial && time ? std::optional<double>(*serial + *time) : std::nullopt;
  }
  out.assign(text.data(), static_cast<size_t>(o - text.data()));
  return serial;
}

std::string FormatDialString(int16_t width, std::string_view hexadecimal) {
  if (width < 0) throw InvalidLength();
  // The rightmost `width` characters of "000" + hexadecimal.
  const size_t keep = static_cast<size_t>(width);
  const size_t total = hexadecimal.size() + 3;
  const size_t skip = total > keep ? total - keep : 0;
  std::string dial;
  dial.reserve(total - skip);
  for (size_t i = skip; i < total; ++i) {
    const char c = i < 3 ? '0' : hexadecimal[i - 3];
    switch (c) {
      case 'A':
      case 'a':
        dial += '*';
        break;
      case 'B':
      case 'b':
        dial += '#';
        break;
      case 'C':
      case 'c':
        dial += 'W';
        break;
      case 'D':
      case 'd':
        dial += ',';
        break;
      case 'E':
      case 'e':
        dial += '+';
        break;
      case 'F':
      case 'f':
        dial += ' ';
        break;
      default:
        if (c >= '0' && c <= '9') dial += c;
        break;
    }
  }
  return dial;
}

std::string FormatSlashedWord(int32_t value, ErrorSink&) {
  const uint32_t u = Unsigned(value);
  std::array<char, 10> text{};
  char* const end = text.data() + text.size();
  char* first = WriteDecimal(end, u & 0xFFu);
  *--first = '/';
  first = WriteDecimal(first, (u >> 8) & 0x7u);
  *--first = '/';
  first = WriteDecimal(first, (u >> 11) & 0xFu);
  return {first, static_cast<size_t>(end - first)};
}

}  // namespace vantrel
