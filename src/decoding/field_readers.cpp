#include "decoding/field_readers.h"

#include <array>

namespace vantrel {
namespace {

constexpr int64_t kTwoTo32 = 4294967296LL;

uint32_t Unsigned(int32_t value) {
  return static_cast<uint32_t>(value);
}

std::array<int64_t, 5> BytesOf(int64_t value) {
  // byte 4 does not exist in a register and always reads 0
  return {value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF, value >> 24, 0};
}

std::string TwoDigits(int64_t value) {
  std::string text = "0" + std::to_string(value);
  return text.substr(text.size() - 2);
}

}  // namespace

std::string ReadString(int32_t value, ErrorSink&) {
  const uint32_t u = Unsigned(value);
  return {static_cast<char>(u >> 24), static_cast<char>((u >> 16) & 0xFF),
          static_cast<char>((u >> 8) & 0xFF), static_cast<char>(u & 0xFF)};
}

int16_t ReadNible(int16_t index, int32_t value, ErrorSink& errors) {
  if (index < 0 || index > 8) {
    errors.ReportError("Error in ReadNible function.");
    return 0;
  }
  if (index == 8) return 0;
  return static_cast<int16_t>((Unsigned(value) >> (4 * index)) & 0xF);
}

int16_t ReadByte(int16_t index, int32_t value, ErrorSink& errors) {
  if (index < 0 || index > 4) {
    errors.ReportError("Error in ReadByte function.");
    return 0;
  }
  return static_cast<int16_t>(BytesOf(Unsigned(value))[static_cast<size_t>(index)]);
}

int32_t Read2Bytes(int16_t index, int32_t value, ErrorSink& errors) {
  if (index < 0 || index > 2) {
    errors.ReportError("Error in Read2Bytes function.");
    return 0;
  }
  if (index == 2) return 0;
  return static_cast<int32_t>((Unsigned(value) >> (16 * index)) & 0xFFFF);
}

std::string ReadASCII(int16_t count, int64_t value, bool raw, ErrorSink& errors) {
  if (value < 0) value += kTwoTo32;
  const std::array<int64_t, 5> bytes = BytesOf(value);
  if (count > 5 || bytes[3] > 255) {
    errors.ReportError("Error in ReadASCII function.");
    return {};
  }
  std::string text;
  for (int i = count - 1; i >= 0; --i) {
    const int64_t code = bytes[static_cast<size_t>(i)];
    text.push_back(static_cast<char>(code < 32 ? 127 : code));
  }
  return raw ? text : "'" + text + "'";
}

std::string ReadMedia(int64_t value, ErrorSink& errors) {
  if (value < 0) value += kTwoTo32;
  const int64_t media = (value >> 16) & 0xFF;
  const int64_t address = value & 0xFFFF;
  if (address > 32767 || value >= kTwoTo32) {
    errors.ReportError("Error in ReadMedia function.");
    return {};
  }
  const char* prefix = "";
  switch (media) {
    case 3:
      prefix = "F ";
      break;
    case 5:
      prefix = "R ";
      break;
    case 18:
      prefix = "C ";
      break;
    case 19:
      prefix = "T ";
      break;
    case 20:
      prefix = "I ";
      break;
    case 21:
      prefix = "O ";
      break;
    default:
      break;
  }
  return prefix + std::to_string(address);
}

std::string FormatBinary(int32_t value, int16_t width) {
  // Octal digits of the 32-bit pattern, each written as three binary digits.
  uint32_t u = Unsigned(value);
  std::string octal;
  do {
    octal.insert(octal.begin(), static_cast<char>('0' + (u & 7)));
    u >>= 3;
  } while (u != 0);
  std::string bits = "0000000000000";
  for (char digit : octal) {
    const int d = digit - '0';
    bits.push_back(d & 4 ? '1' : '0');
    bits.push_back(d & 2 ? '1' : '0');
    bits.push_back(d & 1 ? '1' : '0');
  }
  const size_t keep = width > 0 ? static_cast<size_t>(width) : 0;
  std::string result = bits.size() > keep ? bits.substr(bits.size() - keep) : bits;
  // Only a full 16-digit field is split; a shorter result of a wider field is not.
  if (result.size() == 16 && keep == 16) result.insert(8, " ");
  return result;
}

std::string FormatTimeValue(std::string_view letter, int32_t value, const Clock& clock) {
  if (value < 0) return "Invalid time";
  const int64_t v = value;
  const std::string month = TwoDigits(v / 100000000);
  const std::string day = TwoDigits((v % 100000000) / 1000000);
  const std::string time = TwoDigits((v % 1000000) / 10000) + ":" + TwoDigits((v % 10000) / 100) +
                           ":" + TwoDigits(v % 100);
  const std::string date = day + "/" + month + "/" + TwoDigits(clock.Now().year % 100);
  const bool h = letter.size() == 1 && (letter[0] == 'h' || letter[0] == 'H');
  const bool d = letter.size() == 1 && (letter[0] == 'd' || letter[0] == 'D');
  if (h) return time;
  if (d) return date;
  return date + " " + time;
}

std::string FormatDialString(int16_t width, std::string_view hexadecimal) {
  std::string padded = "000" + std::string(hexadecimal);
  const size_t keep = width > 0 ? static_cast<size_t>(width) : 0;
  if (padded.size() > keep) padded = padded.substr(padded.size() - keep);
  std::string dial;
  for (char c : padded) {
    switch (c) {
      case 'A':
      case 'a':
        dial.push_back('*');
        break;
      case 'B':
      case 'b':
        dial.push_back('#');
        break;
      case 'C':
      case 'c':
        dial.push_back('W');
        break;
      case 'D':
      case 'd':
        dial.push_back(',');
        break;
      case 'E':
      case 'e':
        dial.push_back('+');
        break;
      case 'F':
      case 'f':
        dial.push_back(' ');
        break;
      default:
        if (c >= '0' && c <= '9') dial.push_back(c);
        break;
    }
  }
  return dial;
}

std::string FormatSlashedWord(int32_t value, ErrorSink&) {
  const int64_t v = value;
  const int64_t a = v % 256;
  const int64_t b = (v / 256) % 8;
  const int64_t c = (v / 2048) % 16;
  return std::to_string(c) + "/" + std::to_string(b) + "/" + std::to_string(a);
}

}  // namespace vantrel
