#include "encoded_row.h"

#include <charconv>
#include <cstdio>

#include "vantrel/encoding.h"

namespace vantrel::history {
namespace {

// JSON texts of the row's cells, built without a library: strings escaped, numbers bare.
void AppendJsonString(std::string& out, std::string_view utf8) {
  out += '"';
  for (const char ch : utf8) {
    const auto c = static_cast<unsigned char>(ch);
    if (c == '"' || c == '\\') {
      (out += '\\') += ch;
    } else if (c < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out += escaped;
    } else {
      out += ch;
    }
  }
  out += '"';
}

void AppendJsonNumber(std::string& out, double value) {
  char digits[32];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

std::string DisplayJson(const HistoryRow& row) {
  std::string json = "[";
  for (size_t i = 0; i < row.display.size(); ++i) {
    if (i > 0) json += ',';
    if (i < row.number.size() && row.number[i]) {
      AppendJsonNumber(json, *row.number[i]);
    } else {
      AppendJsonString(json, Cp1252ToUtf8(row.display[i]));
    }
  }
  return json + "]";
}

std::string RawJson(const HistoryRow& row) {
  std::string json = "[";
  for (size_t i = 0; i < row.raw.size(); ++i) {
    if (i > 0) json += ',';
    const std::string& text = row.raw[i];
    int64_t value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!text.empty() && ec == std::errc() && end == text.data() + text.size()) {
      json += text;
    } else {
      AppendJsonString(json, Cp1252ToUtf8(text));
    }
  }
  return json + "]";
}

constexpr const char* kKinds[] = {"record", "miss", "restart", "status"};

}  // namespace

std::string IsoTime(const DateTime& t) {
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d", t.year, t.month, t.day,
                t.hour, t.minute, t.second, t.millisecond);
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

EncodedRow Encode(const HistoryRow& row) {
  EncodedRow e;
  e.kind = KindText(row.kind);
  e.recordNumber = row.recordNumber;
  e.pcTime = IsoTime(row.pcTime);
  e.status = Cp1252ToUtf8(row.status);
  if (row.kind == HistoryRowKind::Miss) e.missed = row.missed;
  e.display = DisplayJson(row);
  e.raw = RawJson(row);
  e.shown = Cp1252ToUtf8(row.line);
  return e;
}

}  // namespace vantrel::history
