#include "encoded_row.h"

#include <charconv>
#include <cstdio>

#include "vantrel/encoding.h"

namespace vantrel::history {
namespace {

// JSON texts of the row's cells, built without a library: strings escaped, numbers bare.
// The cells are Windows-1252 and become UTF-8 on the way; only ASCII bytes need escaping.
void AppendJsonString(std::string& out, std::string_view cp1252) {
  out += '"';
  for (const char ch : cp1252) {
    const auto c = static_cast<unsigned char>(ch);
    if (c == '"' || c == '\\') {
      (out += '\\') += ch;
    } else if (c < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out += escaped;
    } else if (c < 0x80) {
      out += ch;
    } else {
      AppendCp1252AsUtf8(out, std::string_view(&ch, 1));
    }
  }
  out += '"';
}

void AppendJsonNumber(std::string& out, double value) {
  char digits[32];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void AppendDisplayJson(std::string& json, const HistoryRow& row) {
  json += '[';
  for (size_t i = 0; i < row.display.size(); ++i) {
    if (i > 0) json += ',';
    if (i < row.number.size() && row.number[i]) {
      AppendJsonNumber(json, *row.number[i]);
    } else {
      AppendJsonString(json, row.display[i]);
    }
  }
  json += ']';
}

void AppendRawJson(std::string& json, const HistoryRow& row) {
  json += '[';
  for (size_t i = 0; i < row.raw.size(); ++i) {
    if (i > 0) json += ',';
    const std::string& text = row.raw[i];
    int64_t value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!text.empty() && ec == std::errc() && end == text.data() + text.size()) {
      json += text;
    } else {
      AppendJsonString(json, text);
    }
  }
  json += ']';
}

// Digits of `value` (0 <= value < 10^width), zero-padded to `width`.
void AppendDigits(std::string& out, int value, int width) {
  char digits[4];
  for (int i = width - 1; i >= 0; --i) {
    digits[i] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
  out.append(digits, static_cast<size_t>(width));
}

void AppendIsoTime(std::string& out, const DateTime& t) {
  const auto within = [](int value, int limit) { return value >= 0 && value < limit; };
  if (!within(t.year, 10000) || !within(t.month, 100) || !within(t.day, 100) ||
      !within(t.hour, 100) || !within(t.minute, 100) || !within(t.second, 100) ||
      !within(t.millisecond, 1000)) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d", t.year, t.month, t.day,
                  t.hour, t.minute, t.second, t.millisecond);
    out += text;
    return;
  }
  // Once per row on the control's thread: without the formatting machinery of printf.
  const struct {
    char before;
    int value;
    int width;
  } parts[] = {{'\0', t.year, 4},  {'-', t.month, 2},  {'-', t.day, 2},        {' ', t.hour, 2},
               {':', t.minute, 2}, {':', t.second, 2}, {'.', t.millisecond, 3}};
  for (const auto& part : parts) {
    if (part.before != '\0') out += part.before;
    AppendDigits(out, part.value, part.width);
  }
}

constexpr const char* kKinds[] = {"record", "miss", "restart", "status"};

}  // namespace

std::string IsoTime(const DateTime& t) {
  std::string text;
  AppendIsoTime(text, t);
  return text;
}

DateTime ParseIsoTime(const std::string& text) {
  DateTime t;
  std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d.%d", &t.year, &t.month, &t.day, &t.hour, &t.minute,
              &t.second, &t.millisecond);
  return t;
}

HistoryRowKind KindOf(std::string_view text) {
  if (text == kKinds[1]) return HistoryRowKind::Miss;
  if (text == kKinds[2]) return HistoryRowKind::Restart;
  if (text == kKinds[3]) return HistoryRowKind::Status;
  return HistoryRowKind::Record;
}

const char* KindText(HistoryRowKind kind) {
  switch (kind) {
    case HistoryRowKind::Miss:
      return kKinds[1];
    case HistoryRowKind::Restart:
      return kKinds[2];
    case HistoryRowKind::Status:
      return kKinds[3];
    default:
      return kKinds[0];
  }
}

const char* KnownKindText(std::string_view text) {
  for (const char* kind : kKinds) {
    if (text == kind) return kind;
  }
  return nullptr;
}

void EncodedRow::SetTexts(std::string_view pcTime, std::string_view status,
                          std::string_view display, std::string_view raw, std::string_view shown) {
  texts_.clear();
  size_t i = 0;
  for (const std::string_view text : {pcTime, status, display, raw, shown}) {
    texts_ += text;
    ends_[i++] = texts_.size();
  }
}

EncodedRow Encode(const HistoryRow& row) {
  EncodedRow e;
  e.kind = KindText(row.kind);
  e.recordNumber = row.recordNumber;
  if (row.kind == HistoryRowKind::Miss) e.missed = row.missed;
  // Room for the usual row at once: the cells appear twice as JSON and once as shown.
  std::string& t = e.texts_;
  t.reserve(32 + row.status.size() + 3 * row.line.size() + 8 * row.raw.size());
  AppendIsoTime(t, row.pcTime);
  e.ends_[0] = t.size();
  AppendCp1252AsUtf8(t, row.status);
  e.ends_[1] = t.size();
  AppendDisplayJson(t, row);
  e.ends_[2] = t.size();
  AppendRawJson(t, row);
  e.ends_[3] = t.size();
  AppendCp1252AsUtf8(t, row.line);
  e.ends_[4] = t.size();
  return e;
}

}  // namespace vantrel::history
