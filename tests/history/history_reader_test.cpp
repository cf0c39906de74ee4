// A history read back: ranges of one buffer split by the description in force, marker rows
// with their cells, histories written by the first schema, and the times the command line
// takes.

#include "vantrel/history/history_reader.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

#include "support/temp_dir.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::history {
namespace {

HistoryDescription Description(const std::string& key, const std::string& caption) {
  return {key, "Title " + key, 3, {{caption, 0, "Word", 0, "d", 900}, {"Text", 1, "Long", 0, "a"}}};
}

HistoryRow Row(HistoryRowKind kind, int second, const std::string& status,
               const std::string& line) {
  HistoryRow row;
  row.kind = kind;
  row.recordNumber = second;
  row.pcTime = {2026, 11, 23, 9, 0, second, 500};
  row.status = status;
  row.line = line;
  return row;
}

std::vector<RecordedPart> Read(const std::string& path, const std::string& key,
                               const std::string& from, const std::string& to) {
  std::string error;
  const auto reader = HistoryReader::Open(path, error);
  EXPECT_NE(reader, nullptr) << error;
  std::vector<RecordedPart> parts;
  if (reader) {
    EXPECT_TRUE(reader->ReadRange(key, from, to, parts, error)) << error;
  }
  return parts;
}

TEST(HistoryReader, ARangeComesBackPerDescriptionWithItsMarkerRows) {
  testing::TempDir dir;
  const std::string path = dir.File("h.db");
  {
    std::string error;
    auto history = SqliteHistory::Open(path, error);
    ASSERT_NE(history, nullptr) << error;
    history->DescriptionLoaded(Description("PMP1", "Level"));
    history->RowAdded(Row(HistoryRowKind::Record, 1, "Run", " 12\tcaf\xE9"));
    history->DescriptionLoaded(Description("TNK1", "Volume"));
    history->RowAdded(Row(HistoryRowKind::Record, 2, "Run", " 7\ttank"));
    history->DescriptionLoaded(Description("PMP1", "Level 2"));
    history->RowAdded(Row(HistoryRowKind::Miss, 3, "Miss 4", "\t----------------"));
    history->RowAdded(Row(HistoryRowKind::Record, 4, "Stop", "-3\tx"));
    history->RowAdded(Row(HistoryRowKind::Restart, 5, "Restart", "----\t----"));
  }
  std::vector<RecordedPart> parts = Read(path, "PMP1", "", "");
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(parts[0].description.columns[0].caption, "Level");
  EXPECT_EQ(parts[0].description.columns[0].widthTwips, 900);
  EXPECT_EQ(parts[0].description.title, "Title PMP1");
  ASSERT_EQ(parts[0].rows.size(), 1u);
  EXPECT_EQ(parts[0].rows[0].line, " 12\tcaf\xE9") << "texts come back as Windows-1252";
  EXPECT_EQ(parts[0].rows[0].pcTime.millisecond, 500);
  EXPECT_EQ(parts[1].description.columns[0].caption, "Level 2");
  ASSERT_EQ(parts[1].rows.size(), 3u);
  EXPECT_EQ(parts[1].rows[0].kind, HistoryRowKind::Miss);
  EXPECT_EQ(parts[1].rows[0].status, "Miss 4");
  EXPECT_EQ(parts[1].rows[0].line, "\t----------------");
  EXPECT_EQ(parts[1].rows[2].kind, HistoryRowKind::Restart);
  EXPECT_EQ(RecordedLine(parts[1].rows[1], {true, true, true}), "23/11/26\t09:00:04\tStop\t-3\tx");
  EXPECT_EQ(RecordedLine(parts[1].rows[1], {false, true, false}), "09:00:04\t-3\tx");

  // Bounds are inclusive, to the millisecond.
  parts = Read(path, "PMP1", "2026-11-23 09:00:03.500", "2026-11-23 09:00:04.500");
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_EQ(parts[0].rows.size(), 2u);
  EXPECT_TRUE(Read(path, "PMP1", "2026-11-23 09:00:05.501", "").empty());
  EXPECT_EQ(Read(path, "TNK1", "", "")[0].rows[0].line, " 7\ttank");

  std::string error;
  const auto reader = HistoryReader::Open(path, error);
  const std::vector<BufferSummary> buffers = reader->Buffers(error);
  ASSERT_EQ(buffers.size(), 2u);
  EXPECT_EQ(buffers[0].key, "PMP1");
  EXPECT_EQ(buffers[0].descriptions, 2);
  EXPECT_EQ(buffers[0].rows, 4);
  EXPECT_EQ(buffers[0].records, 2);
  EXPECT_EQ(buffers[0].first, "2026-11-23 09:00:01.500");
  EXPECT_EQ(buffers[0].last, "2026-11-23 09:00:05.500");
}

// A history of the first schema is brought up to date when it is opened for writing; its old
// rows come back with their cells as stored.
TEST(HistoryReader, AFirstSchemaHistoryIsUpgradedAndReadable) {
  testing::TempDir dir;
  const std::string path = dir.File("v1.db");
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
  const char* v1 = R"sql(
    CREATE TABLE vantrel_schema (version INTEGER NOT NULL);
    INSERT INTO vantrel_schema VALUES (1);
    CREATE TABLE descriptions (id INTEGER PRIMARY KEY, buffer_key TEXT NOT NULL,
      title TEXT NOT NULL, version INTEGER NOT NULL, loaded_at TEXT NOT NULL);
    CREATE TABLE description_columns (description_id INTEGER NOT NULL, column_index INTEGER
      NOT NULL, caption TEXT NOT NULL, register INTEGER NOT NULL, type TEXT NOT NULL,
      position INTEGER NOT NULL, display_code TEXT NOT NULL,
      PRIMARY KEY (description_id, column_index));
    CREATE TABLE rows (id INTEGER PRIMARY KEY, description_id INTEGER, kind TEXT NOT NULL,
      record_number INTEGER NOT NULL, pc_time TEXT NOT NULL, status TEXT NOT NULL,
      missed INTEGER, display TEXT, raw TEXT);
    INSERT INTO descriptions VALUES (1, 'PMP1', 'Old', 2, '2026-11-20 08:00:00.000');
    INSERT INTO description_columns VALUES (1, 0, 'Level', 0, 'Word', 0, 'd');
    INSERT INTO description_columns VALUES (1, 1, 'Name', 1, 'Long', 0, 'a');
    INSERT INTO rows VALUES (1, 1, 'record', 7, '2026-11-20 08:00:01.000', 'Run', NULL,
      '[12,"abc"]', '[12,1633837824]');
  )sql";
  ASSERT_EQ(sqlite3_exec(db, v1, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
  sqlite3_close(db);

  std::vector<RecordedPart> parts = Read(path, "PMP1", "", "");
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_EQ(parts[0].rows[0].line, "12\tabc");

  std::string error;
  {
    auto history = SqliteHistory::Open(path, error);
    ASSERT_NE(history, nullptr) << error;
    history->DescriptionLoaded(Description("PMP1", "Level"));
    history->RowAdded(Row(HistoryRowKind::Record, 9, "Run", " 12\tabc"));
    history->Flush();
    EXPECT_EQ(history->LastError(), "");
  }
  parts = Read(path, "PMP1", "", "");
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(parts[0].rows[0].line, "12\tabc") << "old rows keep what they had";
  EXPECT_EQ(parts[0].description.columns[0].widthTwips, 0);
  EXPECT_EQ(parts[1].rows[0].line, " 12\tabc");
  EXPECT_EQ(parts[1].description.columns[0].widthTwips, 900);
}

TEST(HistoryTimes, TheFormsTheCommandLineTakes) {
  EXPECT_EQ(HistoryTime("2026-11-23", false), "2026-11-23 00:00:00.000");
  EXPECT_EQ(HistoryTime("2026-11-23", true), "2026-11-23 23:59:59.999");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15", true), "2026-11-23 08:15:59.999");
  EXPECT_EQ(HistoryTime("2026-11-23T08:15:30", false), "2026-11-23 08:15:30.000");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15:30", true), "2026-11-23 08:15:30.999");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15:30.250", true), "2026-11-23 08:15:30.250");
  for (const char* bad : {"", "23/11/26", "2026-13-01", "2026-11-23 24:00", "2026-11-23 08",
                          "2026-11-23x", "2026-11-23 08:15:30.5x", "2026-11-23 08:61"}) {
    EXPECT_FALSE(HistoryTime(bad, false).has_value()) << bad;
  }
}

}  // namespace
}  // namespace vantrel::history
