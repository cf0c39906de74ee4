// The SQLite history: the scenarios every back end shares, writing ahead, a file that cannot
// be made, a full disk, histories of the first schema, and the times the command line takes.

#include "vantrel/history/sqlite_history.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
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
  // The journal mode kept in the file's header shows if a refused file was opened as ours.
  static constexpr const char* kMakeNewer =
      "PRAGMA journal_mode=DELETE; UPDATE vantrel_schema SET version = 99";
  static constexpr const char* kNotOurs = "not a Vantrel history (it has tables of its own";

  void SetUp() {}
  std::string NewTarget() { return dir.File("history" + std::to_string(++files) + ".db"); }
  static std::unique_ptr<RowSink> Open(const std::string& path, std::string& error) {
    return SqliteHistory::Open(path, error);
  }
  static std::unique_ptr<HistoryReader> OpenReader(const std::string& path, std::string& error) {
    return HistoryReader::Open(path, error);
  }
  static std::string Snapshot(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
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

// A history of ours is written ahead, so that a reader can read while rows come in; a file
// that cannot be made is refused.
TEST(SqliteHistory, IsWrittenAheadAndAFileThatCannotBeMadeIsRefused) {
  testing::TempDir dir;
  std::string error;
  ASSERT_TRUE(SqliteHistory::Open(dir.File("trace.db"), error)) << error;
  EXPECT_EQ(SqliteBackend::Query(dir.File("trace.db"), "PRAGMA journal_mode"), (Rows{{"wal"}}));
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

// While another program holds the file's write lock, a batch waits its time and is then
// lost with a report; the description it carried is stored again before the next rows, so
// that no row is ever stored without its description.
TEST(SqliteHistory, ABatchLockedOutLosesItsRowsButNeverTheirDescription) {
  testing::TempDir dir;
  const std::string path = dir.File("trace.db");
  std::string error;
  auto history = SqliteHistory::Open(path, error, 50);
  ASSERT_TRUE(history) << error;
  int64_t lost = 0;
  history->OnRowsLost([&](int64_t rows, std::string_view) { lost += rows; });
  history->DescriptionLoaded(Pumps());
  history->RowAdded(Record(1));
  history->Flush();
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  history->DescriptionLoaded(Pumps(true));
  history->RowAdded(Record(2, "Running", true));
  history->Flush();
  EXPECT_EQ(lost, 1);
  EXPECT_NE(history->LastError().find("locked"), std::string::npos) << history->LastError();
  sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr);
  sqlite3_close(other);
  history->RowAdded(Record(3, "Running", true));
  history.reset();
  EXPECT_EQ(SqliteBackend::Query(path,
                                 "SELECT r.record_number, d.title FROM rows r LEFT JOIN "
                                 "descriptions d ON d.id = r.description_id ORDER BY r.id"),
            (Rows{{"1", "Pump station"}, {"3", "Pump station, new layout"}}));
}

// A file whose pages are damaged is refused before anything is written into it.
TEST(SqliteHistory, ADamagedFileIsRefusedAndLeftAsItIs) {
  testing::TempDir dir;
  const std::string path = dir.File("trace.db");
  std::string error;
  {
    auto history = SqliteHistory::Open(path, error);
    ASSERT_TRUE(history) << error;
    history->DescriptionLoaded(Pumps());
    for (int n = 1; n <= 3000; ++n)
      history->RowAdded(Record(n));
  }
  {
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(3 * 16384);  // the fourth page, from its header on
    file << std::string(4000, '\x5A');
  }
  const std::string damaged = SqliteBackend::Snapshot(path);
  EXPECT_FALSE(SqliteHistory::Open(path, error));
  EXPECT_NE(error.find("the file is damaged"), std::string::npos) << error;
  EXPECT_EQ(SqliteBackend::Snapshot(path), damaged);
  // A reader names what is wrong with a file cut short, not "not a Vantrel history".
  std::filesystem::resize_file(path, 1000);
  EXPECT_FALSE(HistoryReader::Open(path, error));
  EXPECT_EQ(error.rfind("cannot read the history " + path + ": ", 0), 0u) << error;
}

// A history of the first schema (no column widths, no cells as shown) is brought up to date
// when it is opened for writing; its old rows come back with their cells as stored, its
// columns without a width.
TEST(SqliteHistory, AFirstSchemaHistoryIsUpgradedAndReadable) {
  testing::TempDir dir;
  const std::string path = dir.File("v1.db");
  const auto write = [&path](int record) {
    std::string error;
    auto history = SqliteHistory::Open(path, error);
    ASSERT_TRUE(history) << error;
    history->DescriptionLoaded(Pumps());
    history->RowAdded(Record(record, "Caf\xE9"));
    history->Flush();
    EXPECT_EQ(history->LastError(), "");
  };
  const auto readBack = [&path] {
    std::string error;
    const auto reader = HistoryReader::Open(path, error);
    return reader ? ReadBack(*reader) : error;
  };
  write(7);
  ASSERT_EQ(SqliteBackend::Query(path,
                                 "ALTER TABLE description_columns DROP COLUMN width; ALTER TABLE "
                                 "rows DROP COLUMN shown; UPDATE vantrel_schema SET version = 1"),
            Rows{});
  const std::string old =
      "PMP1 Pump station v3: Pump state(0 Byte 1 s 0) Level(1 Word 0 2d 0)\n"
      "record 7 2026-11-23 09:00:07.250 Run [Caf\xE9\t7.5]\n";
  EXPECT_EQ(readBack(), old);
  write(9);
  EXPECT_EQ(readBack(), old +
                            "PMP1 Pump station v3: Pump state(0 Byte 1 s 900) Level(1 Word 0 2d "
                            "1200)\nrecord 9 2026-11-23 09:00:09.250 Run [Caf\xE9\t9.5]\n");
  EXPECT_EQ(SqliteBackend::Query(path, "SELECT version FROM vantrel_schema"), Rows{{"2"}});
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
