// A row as the histories store it: the texts that come out of one shared buffer, the JSON
// of the cells (Windows-1252 made UTF-8, escapes, numbers bare), and the ISO time.

#include "history/encoded_row.h"

#include <gtest/gtest.h>

namespace vantrel::history {
namespace {

TEST(EncodedRow, EveryTextOfARowComesBackFromItsField) {
  HistoryRow row;
  row.kind = HistoryRowKind::Miss;
  row.recordNumber = 41;
  row.missed = 12;
  row.pcTime = {2026, 1, 2, 3, 4, 5, 6};
  row.status = "Miss 12 \xE9";
  row.display = {"Running \"A\"\\1", "7,5", "tab\there", "\x80"};
  row.number = {std::nullopt, 7.5, std::nullopt};  // shorter than display: the rest are texts
  row.raw = {"3", "-15", "3.5", "TNK1\x01"};
  row.line = "Running \"A\"\\1\t7,5\ttab here\t\x80";

  const EncodedRow e = Encode(row);
  EXPECT_STREQ(e.kind, "miss");
  EXPECT_EQ(e.recordNumber, 41);
  EXPECT_EQ(e.missed, 12);
  EXPECT_EQ(e.PcTime(), "2026-01-02 03:04:05.006");
  EXPECT_EQ(e.Status(), "Miss 12 \xC3\xA9");
  EXPECT_EQ(e.Display(), "[\"Running \\\"A\\\"\\\\1\",7.5,\"tab\\u0009here\",\"\xE2\x82\xAC\"]");
  EXPECT_EQ(e.Raw(), "[3,-15,\"3.5\",\"TNK1\\u0001\"]");
  EXPECT_EQ(e.Shown(), "Running \"A\"\\1\t7,5\ttab here\t\xE2\x82\xAC");
}

TEST(EncodedRow, TimesOutsideTheUsualRangeKeepEveryDigit) {
  EXPECT_EQ(IsoTime({12026, 11, 23, 9, 0, 0, 1000}), "12026-11-23 09:00:00.1000");
  EXPECT_EQ(IsoTime({-1, 0, 0, 0, 0, 0, -5}), "-001-00-00 00:00:00.-05");
}

}  // namespace
}  // namespace vantrel::history
