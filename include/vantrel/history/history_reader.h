#pragma once
// Reads a record history back: what it holds, and the rows of one buffer in a time range
// with the descriptions they were decoded with.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vantrel/recorded_export.h"
#include "vantrel/row_sink.h"

namespace vantrel::history {

// One buffer (description key) of a history.
struct BufferSummary {
  std::string key;
  int64_t descriptions = 0;  // descriptions loaded for it
  int64_t rows = 0;          // rows of every kind
  int64_t records = 0;       // record rows
  int64_t missed = 0;        // records counted in Miss rows
  std::string first;         // PC time of the first and last row, "YYYY-MM-DD hh:mm:ss.mmm"
  std::string last;
};

// Rows decoded with one description, in the order they were added.
struct RecordedPart {
  HistoryDescription description;
  std::vector<RecordedRow> rows;
};

class HistoryReader {
 public:
  // Opens the SQLite history at `path` for reading only; nullptr with `error` set when the
  // file does not exist, is not a Vantrel history, or is newer than this Vantrel. (A host
  // that links Vantrel::postgres opens either kind with OpenHistoryReader.)
  static std::unique_ptr<HistoryReader> Open(const std::string& path, std::string& error);
  virtual ~HistoryReader() = default;

  virtual std::vector<BufferSummary> Buffers(std::string& error) const = 0;

  // The rows of buffer `key` (UTF-8) whose PC time lies in [from, to] (either may be empty: no
  // bound), one part per description in force. False with `error` set on a read failure.
  virtual bool ReadRange(const std::string& key, const std::string& from, const std::string& to,
                         std::vector<RecordedPart>& parts, std::string& error) const = 0;
};

// A time as the command line takes it ("YYYY-MM-DD", "YYYY-MM-DD hh:mm", "YYYY-MM-DD
// hh:mm:ss[.fff]" with one to three digits of a second, a "T" in place of the blank) made
// into the history's form. `end` fills what is left out with the last moment it covers;
// nullopt for a text that is not a time or a date that does not exist.
std::optional<std::string> HistoryTime(const std::string& text, bool end);

}  // namespace vantrel::history
