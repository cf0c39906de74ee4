// The SQLite history: the scenarios every back end shares, files refused, a full disk,
// histories of the first schema, and the times the command line takes.

#include "vantrel/history/sqlite_history.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "history/history_scenarios.h"
#include "support/temp_dir.h"
#include "vantrel/history/history_reader.h"

namespace vantrel::history {
namespace {

// SQLite histories, each a file of its own in a fresh directory.
struct SqliteBackend {
  static constexpr const char* kTables =
      "SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name";
  static constexpr const char* kNotOurs = "not a Vantrel history (it has tables of its own";

  void SetUp() {}
  std::string NewTarget() { return dir.File("history" + std::to_string(++files) + ".db"); }
  static std::unique_ptr<RowSink> Open(const std::string& path, std::string& error) {
    return SqliteHistory::Open(path, error);
  }
  static std::unique_ptr<HistoryReader> OpenReader(const std::string& path, std::string& error) {
    return HistoryReader::Open(path, error);
  }
  static Rows Query(const std::string& path, const std::string& sql) {
    Rows rows;
    sqlite3* db = nullptr;
    char* message = nullptr;
    sqlite3_open(path.c_str(), &db);
    const auto add = [](void* into, int columns, char** values, char**) {
      Rows& out = *static_cast<Rows*>(into);
      out.emplace_back();
      for (int c = 0; c < columns; ++c)
        out.back().emplace_back(values[c] != nullptr ? values[c] : "NULL");
      return 0;
    };
    if (sqlite3_exec(db, sql.c_str(), add, &rows, &message) != SQLITE_OK)
      rows.push_back(
          {std::string("error: ") + (message != nullptr ? message : sqlite3_errmsg(db))});
    sqlite3_free(message);
    sqlite3_close(db);
    return rows;
  }

  testing::TempDir dir;
  int files = 0;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Sqlite, HistoryBackend, ::testing::Types<SqliteBackend>);

// Refusing a file must not change a byte of it, not even the journal mode kept in its header
// (a history of ours is written ahead, so that a reader can read while rows come in); a file
// that cannot be made is refused too.
TEST(SqliteHistory, ARefusedFileIsLeftByteForByte) {
  SqliteBackend backend;
  const auto bytes = [](const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  const std::string foreign = backend.NewTarget();
  const std::string newer = backend.NewTarget();
  std::string error;
  ASSERT_TRUE(SqliteHistory::Open(newer, error)) << error;
  EXPECT_EQ(SqliteBackend::Query(newer, "PRAGMA journal_mode"), (Rows{{"wal"}}));
  SqliteBackend::Query(newer, "PRAGMA journal_mode=DELETE; UPDATE vantrel_schema SET version = 99");
  SqliteBackend::Query(foreign, "CREATE TABLE rows (a integer)");
  for (const std::string& path : {foreign, newer}) {
    const std::string before = bytes(path);
    EXPECT_FALSE(SqliteHistory::Open(path, error));
    EXPECT_TRUE(bytes(path) == before) << path << " was changed";
  }
  EXPECT_FALSE(SqliteHistory::Open(backend.dir.File("no-such-folder/trace.db"), error));
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
  int64_t lost = 0;
  std::string report;
  history->OnRowsLost([&](int64_t rows, std::string_view text) {
    lost += rows;
    report = text;
  });
  history->DescriptionLoaded(Pumps());
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
    history->RowAdded(Record(n));
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
    history->RowAdded(Record(n, "Idle"));
  history.reset();
  std::vector<int> stored;
  for (const auto& row : SqliteBackend::Query(path, "SELECT record_number FROM rows ORDER BY id"))
    stored.push_back(std::stoi(row.at(0)));
  ExpectStoredOnceOrLost(stored, kWhileFull + 100, lost);
  ASSERT_GT(stored.size(), 100u) << "nothing stored while the disk was full";
  EXPECT_EQ(stored[stored.size() - 100], kWhileFull + 1) << "rows lost after room was made";
  EXPECT_EQ(stored.back(), kWhileFull + 100);
}

// A history of the first schema is brought up to date when it is opened for writing; its old
// rows come back with their cells as stored, its columns without a width.
TEST(SqliteHistory, AFirstSchemaHistoryIsUpgradedAndReadable) {
  testing::TempDir dir;
  const std::string path = dir.File("v1.db");
  ASSERT_EQ(SqliteBackend::Query(path, R"sql(
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
  )sql"),
            Rows{});
  const auto readBack = [&path] {
    std::string error;
    const auto reader = HistoryReader::Open(path, error);
    return reader ? ReadBack(*reader) : error;
  };
  const std::string old =
      "PMP1 Old v2: Level(0 Word 0 d 0) Name(1 Long 0 a 0)\n"
      "record 7 2026-11-20 08:00:01.000 Run [12\tabc]\n";
  EXPECT_EQ(readBack(), old);

  std::string error;
  {
    auto history = SqliteHistory::Open(path, error);
    ASSERT_TRUE(history) << error;
    history->DescriptionLoaded(Pumps());
    history->RowAdded(Record(9));
    history->Flush();
    EXPECT_EQ(history->LastError(), "");
  }
  EXPECT_EQ(readBack(), old +
                            "PMP1 Pump station v3: Pump state(0 Byte 1 s 900) Level(1 Word 0 2d "
                            "1200)\nrecord 9 2026-11-23 09:00:09.250 Run [Running\t9.5]\n");
}

TEST(HistoryTimes, TheFormsTheCommandLineTakes) {
  EXPECT_EQ(HistoryTime("2026-11-23", false), "2026-11-23 00:00:00.000");
  EXPECT_EQ(HistoryTime("2026-11-23", true), "2026-11-23 23:59:59.999");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15", true), "2026-11-23 08:15:59.999");
  EXPECT_EQ(HistoryTime("2026-11-23T08:15:30", false), "2026-11-23 08:15:30.000");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15:30", true), "2026-11-23 08:15:30.999");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15:30.250", true), "2026-11-23 08:15:30.250");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15:30.5", false), "2026-11-23 08:15:30.500");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15:30.5", true), "2026-11-23 08:15:30.599");
  EXPECT_EQ(HistoryTime("2026-11-23 08:15:30.05", true), "2026-11-23 08:15:30.059");
  EXPECT_EQ(HistoryTime("2028-02-29", false), "2028-02-29 00:00:00.000");
  for (const char* bad :
       {"", "23/11/26", "2026-13-01", "2026-11-23 24:00", "2026-11-23 08", "2026-11-23x",
        "2026-11-23 08:15:30.5x", "2026-11-23 08:15:30.", "2026-11-23 08:15:30.2500",
        "2026-11-23 08:61", "2026-02-29", "2026-04-31", "2026-00-10"}) {
    EXPECT_FALSE(HistoryTime(bad, false).has_value()) << bad;
  }
}

}  // namespace
}  // namespace vantrel::history
