#pragma once
// A row as a history stores it, encoded on the control's thread where it is handed over so
// that a queue holds a few strings per row rather than three per cell: texts in UTF-8, the
// PC time as an ISO text, the cells as JSON arrays. Shared by every history backend.

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "vantrel/row_sink.h"

namespace vantrel::history {

struct EncodedRow {
  const char* kind = "record";  // "record", "miss", "restart" or "status"
  int64_t recordNumber = 0;
  std::string pcTime;  // YYYY-MM-DD hh:mm:ss.mmm
  std::string status;
  std::optional<int64_t> missed;
  std::string display;  // JSON array: a number where the shown text reads as one
  std::string raw;      // JSON array: integers bare, other values as strings
  std::string shown;    // the row's cells as the table showed them, tab-separated

  bool operator==(const EncodedRow&) const = default;
};

EncodedRow Encode(const HistoryRow& row);

// The kind's text for a row kind, and back (nullptr for a text that is not a kind).
const char* KindText(HistoryRowKind kind);
const char* KnownKindText(std::string_view text);

// The kind of a kind's text ("record" for one that is none).
HistoryRowKind KindOf(std::string_view text);

// "YYYY-MM-DD hh:mm:ss.mmm", and back.
std::string IsoTime(const DateTime& t);
DateTime ParseIsoTime(const std::string& text);

// What a history's queue carries: a description as loaded, or a row.
using HistoryItem = std::variant<HistoryDescription, EncodedRow>;

}  // namespace vantrel::history
