#pragma once
// The rows both history benchmarks write: 100,000 rows of 12 trace columns, numbers and
// texts, with raw values and the shown line, and their description.

#include <cstdio>
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

// What the history stores of a row beyond its plain fields, built here without our code for
// the plain-insert baselines: the PC time as text, the cells and raw values as JSON arrays.
struct StoredTexts {
  std::string pcTime;
  std::string display;
  std::string raw;
};

StoredTexts Stored(const HistoryRow& row) {
  StoredTexts s;
  char time[32];
  const DateTime& t = row.pcTime;
  std::snprintf(time, sizeof time, "%04d-%02d-%02d %02d:%02d:%02d.%03d", t.year, t.month, t.day,
                t.hour, t.minute, t.second, t.millisecond);
  s.pcTime = time;
  s.display = "[";
  s.raw = "[";
  for (size_t col = 0; col < row.display.size(); ++col) {
    s.display += (col > 0 ? "," : "") +
                 (row.number[col] ? row.display[col] : "\"" + row.display[col] + "\"");
    s.raw += (col > 0 ? "," : "") + row.raw[col];
  }
  s.display += "]";
  s.raw += "]";
  return s;
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
