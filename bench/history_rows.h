#pragma once
// The rows both history benchmarks write: 100,000 rows of 12 trace columns, numbers and
// texts, with raw values and the shown line, and their description.

#include <string>
#include <vector>

#include "vantrel/row_sink.h"

namespace vantrel::bench {

constexpr int kRows = 100000;
constexpr int kColumns = 12;

std::vector<HistoryRow> Rows() {
  std::vector<HistoryRow> rows(kRows);
  for (int r = 0; r < kRows; ++r) {
    HistoryRow& row = rows[static_cast<size_t>(r)];
    row.recordNumber = r + 1;
    // A row every millisecond: PC times rise as they do in a trace.
    row.pcTime = {2026, 11, 23, 9 + r / 3600000, r / 60000 % 60, r / 1000 % 60, r % 1000};
    row.status = "Run";
    for (int c = 0; c < kColumns; ++c) {
      if (c % 3 == 0) {
        row.display.push_back(c % 2 == 0 ? "Running" : "Idle");
        row.number.push_back(std::nullopt);
      } else {
        row.display.push_back(std::to_string(r % 1000 + c));
        row.number.push_back(static_cast<double>(r % 1000 + c));
      }
      row.raw.push_back(std::to_string(r * 7 + c));
      row.line += (c > 0 ? "\t" : "") + row.display.back();
    }
  }
  return rows;
}

const std::vector<HistoryRow>& TheRows() {
  static const std::vector<HistoryRow> rows = Rows();
  return rows;
}

HistoryDescription Description() {
  HistoryDescription d;
  d.key = "PMP1";
  d.title = "Pump station";
  for (int c = 0; c < kColumns; ++c)
    d.columns.push_back({"Column " + std::to_string(c), static_cast<int16_t>(c), "Word", 0, "d"});
  return d;
}

}  // namespace vantrel::bench
