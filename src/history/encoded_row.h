#pragma once
// A row as a history stores it, encoded on the control's thread where it is handed over:
// texts in UTF-8, the PC time as an ISO text, the cells as JSON arrays. The texts share one
// buffer, so that queueing a row costs one allocation and the writer's thread, which frees
// it, touches one block rather than a handful. Shared by every history backend.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "vantrel/row_sink.h"

namespace vantrel::history {

class EncodedRow {
 public:
  const char* kind = "record";  // "record", "miss", "restart" or "status"
  int64_t recordNumber = 0;
  std::optional<int64_t> missed;

  std::string_view PcTime() const { return Field(0); }  // YYYY-MM-DD hh:mm:ss.mmm
  std::string_view Status() const { return Field(1); }
  std::string_view Display() const {
    return Field(2);
  }                                                  // JSON: a number where the shown
                                                     // text reads as one
  std::string_view Raw() const { return Field(3); }  // JSON: integers bare, else strings
  std::string_view Shown() const {
    return Field(4);
  }  // the cells as the table showed
     // them, tab-separated

  void SetTexts(std::string_view pcTime, std::string_view status, std::string_view display,
                std::string_view raw, std::string_view shown);

  bool operator==(const EncodedRow&) const = default;

 private:
  friend EncodedRow Encode(const HistoryRow& row);
  std::string_view Field(size_t i) const {
    const size_t begin = i == 0 ? 0 : ends_[i - 1];
    return std::string_view(texts_).substr(begin, ends_[i] - begin);
  }
  std::string texts_;
  std::array<size_t, 5> ends_{};
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
