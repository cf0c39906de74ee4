#pragma once
// What every history back end must do alike, stated once: a typed test suite that the SQLite
// and the PostgreSQL history tests each instantiate with a type that opens their kind of
// history, and the rows it writes. A back end type has
//   SetUp()                    skips the test where the back end is not there;
//   NewTarget()                an empty database: a file, or a URL;
//   Open(target, error)        a writer, or nullptr with `error` set;
//   OpenReader(target, error)  a reader, or nullptr with `error` set;
//   Query(target, sql)         every row of `sql` (one or more statements) as texts, NULL as
//                              "NULL", a failure as one row "error: ...";
//   Snapshot(target)           everything the database holds, to see that it is unchanged;
//   kMakeNewer                 the statements that make a history of ours a newer one;
//   kNotOurs                   what refusing a database with a table named rows says.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "history/encoded_row.h"
#include "vantrel/history/history_reader.h"
#include "vantrel/row_sink.h"

namespace vantrel::history {

using Rows = std::vector<std::vector<std::string>>;

// The pump station's description; the new layout has a flow column in front.
inline HistoryDescription Pumps(bool newLayout = false) {
  HistoryDescription d{"PMP1", "Pump station", 3, {}};
  d.columns = {{"Pump state", 0, "Byte", 1, "s", 900}, {"Level", 1, "Word", 0, "2d", 1200}};
  if (newLayout) {
    d.title = "Pump station, new layout";
    d.columns.insert(d.columns.begin(), {"Flow m\xB3/h", 2, "Word", 1, "h", 600});
  }
  return d;
}

// A row at 09:00:second.millisecond on 23 November 2026, its cells shown as `line`.
inline HistoryRow Row(HistoryRowKind kind, int number, int second, int millisecond,
                      const std::string& status, const std::string& line, int64_t missed = 0) {
  HistoryRow row;
  row.kind = kind;
  row.recordNumber = number;
  row.pcTime = {2026, 11, 23, 9, 0, second, millisecond};
  row.status = status;
  row.line = line;
  row.missed = missed;
  return row;
}

// Record `n` of the pump station at 09:00:(n % 60).250: its state and a level of n.5, after a
// flow in the new layout.
inline HistoryRow Record(int n, const std::string& state = "Running", bool newLayout = false) {
  HistoryRow row = Row(HistoryRowKind::Record, n, n % 60, 250, "Run", "");
  row.display = {state, std::to_string(n) + ".5"};
  row.number = {std::nullopt, n + 0.5};
  row.raw = {"3", std::to_string(n * 10 + 5)};
  if (newLayout) {
    row.display.insert(row.display.begin(), "01FF");
    row.number.insert(row.number.begin(), std::nullopt);
    row.raw.insert(row.raw.begin(), "511");
  }
  row.line = row.display[0];
  for (size_t i = 1; i < row.display.size(); ++i)
    row.line += "\t" + row.display[i];
  return row;
}

// Records of the pump station (one with a text that needs care), a Miss row, a tank's
// description and record between two loads of the pump station's, a Restart row.
inline void WriteScenario(RowSink& sink) {
  sink.DescriptionLoaded(Pumps());
  sink.RowAdded(Record(1));
  sink.RowAdded(Record(2, "Caf\xE9 \"a\\b\"\ttab\nline"));
  sink.RowAdded(Record(3));
  sink.RowAdded(Row(HistoryRowKind::Miss, 3, 3, 999, "Miss 4", "\t----", 4));
  sink.DescriptionLoaded({"TNK1", "Tank farm", 1, {{"Volume", 4, "Long", 0, "d", 800}}});
  sink.RowAdded(Row(HistoryRowKind::Record, 1, 3, 500, "Run", "7"));
  sink.DescriptionLoaded(Pumps(true));
  sink.RowAdded(Record(4, "Running", true));
  sink.RowAdded(Row(HistoryRowKind::Restart, 4, 4, 600, "Restart", "\t----"));
  sink.RowAdded(Record(5, "Running", true));
}

// A description as text: its key, title and version, then each column's fields.
inline std::string DescriptionText(const HistoryDescription& d) {
  std::string text = d.key + " " + d.title + " v" + std::to_string(d.version) + ":";
  for (const HistoryColumn& c : d.columns) {
    text += " " + c.caption + "(" + std::to_string(c.registerIndex) + " " + c.fieldType + " " +
            std::to_string(c.position) + " " + c.displayCode + " " + std::to_string(c.widthTwips) +
            ")";
  }
  return text;
}

// Buffer PMP1 between two times (empty: no bound) read back as text: each description in
// force, then its rows.
inline std::string ReadBack(const HistoryReader& reader, const std::string& from = "",
                            const std::string& to = "") {
  std::vector<RecordedPart> parts;
  std::string error;
  EXPECT_TRUE(reader.ReadRange("PMP1", from, to, parts, error)) << error;
  constexpr const char* kKinds[] = {"record", "miss", "restart", "status"};
  std::string text;
  for (const RecordedPart& part : parts) {
    text += DescriptionText(part.description) + "\n";
    for (const RecordedRow& r : part.rows) {
      text += std::string(kKinds[static_cast<size_t>(r.kind)]) + " " +
              std::to_string(r.recordNumber) + " " + IsoTime(r.pcTime) + " " + r.status + " [" +
              r.line + "]\n";
    }
  }
  return text;
}

// Rows numbered 1 to `written` went in while some could not be stored: each of them is
// stored once, in order, or counted as lost, and some were lost.
inline void ExpectStoredOnceOrLost(const std::vector<int>& stored, int written, int64_t lost) {
  EXPECT_GT(lost, 0) << "nothing was lost: the test did not fill the store";
  EXPECT_EQ(static_cast<int64_t>(stored.size()) + lost, written);
  EXPECT_EQ(std::adjacent_find(stored.begin(), stored.end(), std::greater_equal<>()), stored.end())
      << "a row stored twice or out of order";
}

template <typename Backend>
class HistoryBackend : public ::testing::Test {
 protected:
  void SetUp() override { backend.SetUp(); }

  Backend backend;
};

TYPED_TEST_SUITE_P(HistoryBackend);

TYPED_TEST_P(HistoryBackend, KeepsEveryRowUnderItsDescriptionForSqlAndForTheReader) {
  const std::string target = this->backend.NewTarget();
  std::string error;
  {
    const auto history = TypeParam::Open(target, error);
    ASSERT_TRUE(history) << error;
    WriteScenario(*history);
  }  // closing writes what is queued
  // The documented question, one plain query: a column's values between two times (the new
  // layout moved the column).
  EXPECT_EQ(TypeParam::Query(target,
                             "SELECT record_number, value, raw FROM record_values WHERE "
                             "buffer_key = 'PMP1' AND caption = 'Level' AND pc_time BETWEEN "
                             "'2026-11-23 09:00:02' AND '2026-11-23 09:00:05' ORDER BY pc_time"),
            (Rows{{"2", "2.5", "25"}, {"3", "3.5", "35"}, {"4", "4.5", "45"}}));

  const auto reader = TypeParam::OpenReader(target, error);
  ASSERT_TRUE(reader) << error;
  // Per buffer: descriptions loaded, rows, records, records missed, first and last time.
  std::vector<std::string> buffers;
  for (const BufferSummary& b : reader->Buffers(error)) {
    buffers.push_back(b.key + " " + std::to_string(b.descriptions) + " " + std::to_string(b.rows) +
                      " " + std::to_string(b.records) + " " + std::to_string(b.missed) + " " +
                      b.first + " " + b.last);
  }
  EXPECT_EQ(buffers, (std::vector<std::string>{
                         "PMP1 2 7 5 4 2026-11-23 09:00:01.250 2026-11-23 09:00:05.250",
                         "TNK1 1 1 1 0 2026-11-23 09:00:03.500 2026-11-23 09:00:03.500"}))
      << error;

  // Texts come back as the table showed them (Windows-1252), times to the millisecond.
  const std::string v1 =
      "PMP1 Pump station v3: Pump state(0 Byte 1 s 900) Level(1 Word 0 2d 1200)\n";
  const std::string v2 =
      "PMP1 Pump station, new layout v3: Flow m\xB3/h(2 Word 1 h 600) Pump state(0 Byte 1 s "
      "900) Level(1 Word 0 2d 1200)\n";
  const std::string r1 = "record 1 2026-11-23 09:00:01.250 Run [Running\t1.5]\n";
  const std::string r2 =
      "record 2 2026-11-23 09:00:02.250 Run [Caf\xE9 \"a\\b\"\ttab\nline\t2.5]\n";
  const std::string r3 = "record 3 2026-11-23 09:00:03.250 Run [Running\t3.5]\n";
  const std::string miss = "miss 3 2026-11-23 09:00:03.999 Miss 4 [\t----]\n";
  const std::string r4 = "record 4 2026-11-23 09:00:04.250 Run [01FF\tRunning\t4.5]\n";
  const std::string restart = "restart 4 2026-11-23 09:00:04.600 Restart [\t----]\n";
  const std::string r5 = "record 5 2026-11-23 09:00:05.250 Run [01FF\tRunning\t5.5]\n";
  EXPECT_EQ(ReadBack(*reader), v1 + r1 + r2 + r3 + miss + v2 + r4 + restart + r5);
  // Bounds are inclusive, to the millisecond.
  EXPECT_EQ(ReadBack(*reader, "2026-11-23 09:00:02.250", "2026-11-23 09:00:04.250"),
            v1 + r2 + r3 + miss + v2 + r4);
  EXPECT_EQ(ReadBack(*reader, "2026-11-23 09:00:03.251", "2026-11-23 09:00:03.999"), v1 + miss);
}

// Refusing a database must not change it at all.
TYPED_TEST_P(HistoryBackend, RefusesDatabasesNotOursOrNewerAndLeavesThemAlone) {
  std::string error;
  // A table of one of our names and no schema of ours; a history of a newer schema.
  const std::string foreign = this->backend.NewTarget();
  TypeParam::Query(foreign, "CREATE TABLE rows (a integer); INSERT INTO rows VALUES (42)");
  const std::string newer = this->backend.NewTarget();
  ASSERT_TRUE(TypeParam::Open(newer, error)) << error;
  TypeParam::Query(newer, TypeParam::kMakeNewer);
  for (const auto& [target, writerSays, readerSays] :
       {std::tuple{foreign, TypeParam::kNotOurs, "is not a Vantrel history"},
        std::tuple{newer, "schema version 99 is newer", "schema version 99, newer"}}) {
    const std::string before = TypeParam::Snapshot(target);
    ASSERT_NE(before, "");
    EXPECT_FALSE(TypeParam::Open(target, error));
    EXPECT_NE(error.find(writerSays), std::string::npos) << error;
    EXPECT_FALSE(TypeParam::OpenReader(target, error));
    EXPECT_NE(error.find(readerSays), std::string::npos) << error;
    EXPECT_TRUE(TypeParam::Snapshot(target) == before) << target << " was changed";
  }
}

REGISTER_TYPED_TEST_SUITE_P(HistoryBackend, KeepsEveryRowUnderItsDescriptionForSqlAndForTheReader,
                            RefusesDatabasesNotOursOrNewerAndLeavesThemAlone);

}  // namespace vantrel::history
