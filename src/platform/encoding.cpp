#include "vantrel/encoding.h"

#include <array>
#include <cstdint>

namespace vantrel {
namespace {

// Code points of bytes 0x80..0x9F; the five bytes Windows-1252 leaves undefined keep their
// C1 code points so that a round trip is lossless.
constexpr std::array<char32_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t CodePointOf(unsigned char byte) {
  if (byte >= 0x80 && byte <= 0x9F) return kHighControls[byte - 0x80];
  return byte;
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

char ByteOf(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<char>(cp);
  for (size_t i = 0; i < kHighControls.size(); ++i) {
    if (kHighControls[i] == cp) return static_cast<char>(0x80 + i);
  }
  return '?';
}

}  // namespace

std::string Cp1252ToUtf8(std::string_view cp1252) {
  std::string out;
  out.reserve(cp1252.size());
  AppendCp1252AsUtf8(out, cp1252);
  return out;
}

void AppendCp1252AsUtf8(std::string& out, std::string_view cp1252) {
  for (char c : cp1252)
    AppendUtf8(out, CodePointOf(static_cast<unsigned char>(c)));
}

std::string Cp1252ToUtf8Line(std::string_view cp1252) {
  std::string out;
  for (const char c : Cp1252ToUtf8(cp1252)) {
    if (c == '\r') {
      out += "\\r";
    } else if (c == '\n') {
      out += "\\n";
    } else {
      out.push_back(c);
    }
  }
  return out;
}

std::string Utf8ToCp1252(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  size_t i = 0;
  while (i < utf8.size()) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    size_t extra = 0;
    char32_t cp = lead;
    if (lead >= 0xC0 && lead < 0xE0) {
      extra = 1;
      cp = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead < 0xF0) {
      extra = 2;
      cp = lead & 0x0Fu;
    } else if (lead >= 0xF0 && lead < 0xF8) {
      extra = 3;
      cp = lead & 0x07u;
    } else if (lead >= 0x80) {
      out.push_back('?');  // a stray continuation byte or an invalid lead byte
      ++i;
      continue;
    }
    bool valid = true;
    for (size_t k = 1; valid && k <= extra; ++k) {
      if (i + k >= utf8.size()) {
        valid = false;
        break;
      }
      const auto next = static_cast<unsigned char>(utf8[i + k]);
      if ((next & 0xC0u) != 0x80u) valid = false;
      cp = (cp << 6) | (next & 0x3Fu);
    }
    if (!valid) {
      out.push_back('?');
      ++i;
      continue;
    }
    out.push_back(ByteOf(cp));
    i += extra + 1;
  }
  return out;
}

}  // namespace vantrel
