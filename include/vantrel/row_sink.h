#pragma once
// Rows as they are added to the table, for hosts that keep every one of them (a record
// history) while the table itself keeps only the newest MaxRows. A sink is called on the
// control's thread for every row and every loaded description; it must return quickly
// (queue the row and write it elsewhere), as the control waits for it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vantrel/clock.h"
#include "vantrel/row_kind.h"

namespace vantrel {

struct HistoryColumn {
  std::string caption;  // texts are Windows-1252 bytes, as in the table
  int16_t registerIndex = 0;
  std::string fieldType;  // "Bit", "Nible", "Byte", "Word", "Long", "Strg"
  int16_t position = 0;
  std::string displayCode;
  int32_t widthTwips = 0;  // the column's width in the table
};

// A trace description as it was loaded: the columns in the order of the row's cells.
struct HistoryDescription {
  std::string key;
  std::string title;
  int32_t version = 0;
  std::vector<HistoryColumn> columns;
};

using HistoryRowKind = RowKind;

struct HistoryRow {
  HistoryRowKind kind = HistoryRowKind::Record;
  int32_t recordNumber = 0;  // the table's record counter; marker rows carry the last one
  DateTime pcTime;           // the PC date and time the row carries
  std::string status;        // the controller status text, "Miss <n>" or "Restart"
  int64_t missed = 0;        // records lost, on a Miss row
  // The row's cells after the stamp columns, tab-separated, exactly as the table shows them
  // (what OutputLine carries after the stamps the host asked for).
  std::string line;
  // Per trace column, the text shown and the raw value decoded (empty on marker rows).
  std::vector<std::string> display;
  std::vector<std::string> raw;
  // Per trace column, the display text read as a number (with the table's decimal
  // separator) when it is one.
  std::vector<std::optional<double>> number;
};

class RowSink {
 public:
  virtual ~RowSink() = default;
  virtual void DescriptionLoaded(const HistoryDescription& description) = 0;
  virtual void RowAdded(const HistoryRow& row) = 0;
};

}  // namespace vantrel
