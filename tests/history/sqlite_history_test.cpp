// The SQLite history: rows and descriptions written by the worker, read back with plain SQL
// through the documented view; histories of other descriptions and foreign files.

#include "vantrel/history/sqlite_history.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace vantrel::history {
namespace {

HistoryDescription Pumps(int version) {
  HistoryDescription d;
  d.key = "PMP1";
  d.title = "Pump station";
  d.version = version;
  d.columns = {{"Pump state", 0, "Byte", 1, "s"}, {"Level", 1, "Word", 0, "2d"}};
  if (version > 1) d.columns.insert(d.columns.begin(), {"Flow", 2, "Word", 1, "h"});
  return d;
}

HistoryRow Record(int number, int second, std::vector<std::string> display,
                  std::vector<std::optional<double>> numbers, std::vector<std::string> raw) {
  HistoryRow row;
  row.recordNumber = number;
  row.pcTime = {2026, 11, 23, 9, 0, second, 250};
  row.status = "Run";
  row.display = std::move(display);
  row.number = std::move(numbers);
  row.raw = std::move(raw);
  return row;
}

// Every result row of `sql`, its columns as "type:value" texts.
std::vector<std::vector<std::string>> Query(const std::string& path, const std::string& sql) {
  sqlite3* db = nullptr;
  std::vector<std::vector<std::string>> rows;
  if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) return rows;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK) {
    while (sqlite3_step(statement) == SQLITE_ROW) {
      std::vector<std::string> row;
      for (int c = 0; c < sqlite3_column_count(statement); ++c) {
        const char* types[] = {"", "integer", "real", "text", "blob", "null"};
        const unsigned char* text = sqlite3_column_text(statement, c);
        row.push_back(std::string(types[sqlite3_column_type(statement, c)]) + ":" +
                      (text != nullptr ? reinterpret_cast<const char*>(text) : ""));
      }
      rows.push_back(std::move(row));
    }
  } else {
    rows.push_back({std::string("error: ") + sqlite3_errmsg(db)});
  }
  sqlite3_finalize(statement);
  sqlite3_close(db);
  return rows;
}

using Rows = std::vector<std::vector<std::string>>;

TEST(SqliteHistory, AColumnBetweenTwoTimesIsOnePlainQuery) {
  testing::TempDir dir;
  const std::string path = dir.File("trace.db");
  std::string error;
  {
    auto history = SqliteHistory::Open(path, error);
    ASSERT_TRUE(history) << error;
    history->DescriptionLoaded(Pumps(1));
    history->RowAdded(Record(1, 1, {"Running", " 12,50"}, {std::nullopt, 12.5}, {"2", "1250"}));
    history->RowAdded(Record(2, 2, {"Caf\xE9 \"stop\"", "-3"}, {std::nullopt, -3.0}, {"3", "-3"}));
    HistoryRow miss;
    miss.kind = HistoryRowKind::Miss;
    miss.recordNumber = 2;
    miss.pcTime = {2026, 11, 23, 9, 0, 2, 250};
    miss.status = "Miss 7";
    miss.missed = 7;
    history->RowAdded(miss);
    history->RowAdded(Record(3, 4, {"Idle", " 0"}, {std::nullopt, 0.0}, {"1", "0"}));
    history->Flush();
    EXPECT_EQ(history->LastError(), "");
  }
  EXPECT_EQ(
      Query(path,
            "SELECT pc_time, value FROM record_values WHERE buffer_key = 'PMP1' AND caption = "
            "'Pump state' AND pc_time BETWEEN '2026-11-23 09:00:02' AND '2026-11-23 "
            "09:00:05' ORDER BY pc_time"),
      (Rows{{"text:2026-11-23 09:00:02.250", "text:Caf\xC3\xA9 \"stop\""},
            {"text:2026-11-23 09:00:04.250", "text:Idle"}}));
  // Numbers are numbers, raw values are kept, marker rows are rows of their own.
  EXPECT_EQ(
      Query(path,
            "SELECT value, raw FROM record_values WHERE caption = 'Level' ORDER BY record_number"),
      (Rows{{"real:12.5", "integer:1250"},
            {"integer:-3", "integer:-3"},
            {"integer:0", "integer:0"}}));
  EXPECT_EQ(Query(path, "SELECT kind, missed, status FROM rows WHERE kind <> 'record'"),
            (Rows{{"text:miss", "integer:7", "text:Miss 7"}}));
}

TEST(SqliteHistory, AChangedDescriptionKeepsTheRowsOfTheOldOne) {
  testing::TempDir dir;
  const std::string path = dir.File("trace.db");
  std::string error;
  for (int version : {1, 2}) {
    // A second run opens the same file: the rows of the first stay as they were.
    auto history = SqliteHistory::Open(path, error);
    ASSERT_TRUE(history) << error;
    history->DescriptionLoaded(Pumps(version));
    if (version == 1) {
      history->RowAdded(Record(1, 1, {"Running", " 5"}, {std::nullopt, 5.0}, {"2", "5"}));
    } else {
      history->RowAdded(Record(1, 9, {"01FF", "Idle", " 6"}, {std::nullopt, std::nullopt, 6.0},
                               {"511", "1", "6"}));
    }
  }
  EXPECT_EQ(Query(path, "SELECT version, count(*) FROM descriptions GROUP BY version"),
            (Rows{{"integer:1", "integer:1"}, {"integer:2", "integer:1"}}));
  EXPECT_EQ(Query(path, "SELECT value FROM record_values WHERE caption = 'Level' ORDER BY pc_time"),
            (Rows{{"integer:5"}, {"integer:6"}}));
  EXPECT_EQ(
      Query(path, "SELECT value FROM record_values WHERE caption = 'Pump state' ORDER BY pc_time"),
      (Rows{{"text:Running"}, {"text:Idle"}}));
}

TEST(SqliteHistory, FilesThatAreNotOursAreRefusedAndLeftAlone) {
  testing::TempDir dir;
  std::string error;
  const std::string foreign = dir.File("foreign.db");
  {
    sqlite3* db = nullptr;
    sqlite3_open(foreign.c_str(), &db);
    sqlite3_exec(db, "CREATE TABLE plant (x); INSERT INTO plant VALUES (1)", nullptr, nullptr,
                 nullptr);
    sqlite3_close(db);
  }
  EXPECT_FALSE(SqliteHistory::Open(foreign, error));
  EXPECT_NE(error.find("not a Vantrel history"), std::string::npos) << error;
  EXPECT_EQ(Query(foreign, "SELECT count(*) FROM sqlite_schema"), (Rows{{"integer:1"}}));

  const std::string newer = dir.File("newer.db");
  {
    auto history = SqliteHistory::Open(newer, error);
    ASSERT_TRUE(history) << error;
  }
  {
    sqlite3* db = nullptr;
    sqlite3_open(newer.c_str(), &db);
    sqlite3_exec(db, "UPDATE vantrel_schema SET version = 99", nullptr, nullptr, nullptr);
    sqlite3_close(db);
  }
  EXPECT_FALSE(SqliteHistory::Open(newer, error));
  EXPECT_NE(error.find("schema version 99 is newer"), std::string::npos) << error;

  EXPECT_FALSE(SqliteHistory::Open(dir.File("no-such-folder/trace.db"), error));
  EXPECT_NE(error.find("cannot open the history"), std::string::npos) << error;
}

// A full disk, played by a file size limit: the rows that cannot be written are counted and
// reported, none is stored twice or out of order, and once there is room again the history
// goes on writing.
TEST(SqliteHistory, AFullDiskLosesRowsOnlyWithAReportAndWritingResumesWhenThereIsRoom) {
  testing::TempDir dir;
  const std::string path = dir.File("trace.db");
  std::string error;
  auto history = SqliteHistory::Open(path, error);
  ASSERT_TRUE(history) << error;
  int64_t reportedLost = 0;
  std::string report;
  history->OnRowsLost([&](int64_t rows, std::string_view text) {
    reportedLost += rows;
    report = text;
  });
  history->DescriptionLoaded(Pumps(1));
  history->Flush();

  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit limited = before;
  limited.rlim_cur = 256 * 1024;
  // Past the limit a write fails with EFBIG instead of killing the process.
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
  constexpr int kWhileFull = 4000;
  for (int n = 1; n <= kWhileFull; ++n) {
    history->RowAdded(Record(n, n % 60, {"Running", std::to_string(n)},
                             {std::nullopt, static_cast<double>(n)},
                             {"2", std::to_string(n * 1000)}));
    if (n % 100 == 0) history->Flush();
  }
  history->Flush();
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, oldHandler);

  // SQLite says only "disk I/O error" for a write past the limit; the reason is added.
  EXPECT_NE(history->LastError().find(std::strerror(EFBIG)), std::string::npos)
      << history->LastError();
  EXPECT_NE(report.find("history rows lost"), std::string::npos) << report;
  for (int n = kWhileFull + 1; n <= kWhileFull + 100; ++n)
    history->RowAdded(Record(n, n % 60, {"Idle", "0"}, {std::nullopt, 0.0}, {"1", "0"}));
  history->Flush();
  history.reset();

  std::vector<int> stored;
  for (const auto& row : Query(path, "SELECT record_number FROM rows ORDER BY id"))
    stored.push_back(std::stoi(row.at(0).substr(row.at(0).find(':') + 1)));
  const auto whileFull = static_cast<int64_t>(
      std::count_if(stored.begin(), stored.end(), [](int n) { return n <= kWhileFull; }));
  EXPECT_GT(reportedLost, 0);
  EXPECT_GT(whileFull, 0);
  EXPECT_EQ(whileFull + reportedLost, kWhileFull);
  EXPECT_TRUE(std::is_sorted(stored.begin(), stored.end()));
  EXPECT_EQ(std::adjacent_find(stored.begin(), stored.end()), stored.end());
  ASSERT_GE(stored.size(), 100u);
  EXPECT_EQ(stored.back(), kWhileFull + 100);
  EXPECT_EQ(stored[stored.size() - 100], kWhileFull + 1);
}

}  // namespace
}  // namespace vantrel::history
