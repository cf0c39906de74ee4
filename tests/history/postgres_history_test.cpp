// The PostgreSQL history against a real server of its own: the scenarios every back end
// shares; texts exactly as COPY and JSON must carry them; a full spool, and closing while the
// server is away, that say what they lost; connections ended at random with nothing lost or
// doubled. (Rows spooled through a server restart are in the fault soak, two writers into one
// database and URLs that are refused in the two-run test of tests/apps.)

#include "vantrel/history/postgres_history.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include "history/history_scenarios.h"
#include "support/postgres_server.h"
#include "vantrel/history/record_history.h"

namespace vantrel::history {
namespace {

using testing::PostgresServer;
using namespace std::chrono_literals;

// The record numbers of the record rows, in the order they were stored.
std::vector<int> StoredRecords(const std::string& url) {
  std::vector<int> numbers;
  for (const auto& row : PostgresServer::Query(
           url, "SELECT record_number FROM rows WHERE kind = 'record' ORDER BY id"))
    numbers.push_back(std::stoi(row[0]));
  return numbers;
}

// PostgreSQL histories, each a database of its own on a private server.
struct PostgresBackend {
  static constexpr const char* kMakeNewer = "UPDATE vantrel_schema SET version = 99";
  static constexpr const char* kNotOurs = "not a Vantrel history (it has tables named rows";

  void SetUp() { VANTREL_NEED_POSTGRES(server); }
  std::string NewTarget() { return server.NewDatabase(); }
  static std::unique_ptr<RowSink> Open(const std::string& url, std::string& error) {
    PostgresHistoryOptions options;
    options.url = url;
    return PostgresHistory::Open(std::move(options), error);
  }
  // Through the call that opens either kind of history by its setting.
  static std::unique_ptr<HistoryReader> OpenReader(const std::string& url, std::string& error) {
    return OpenHistoryReader(url, error);
  }
  // The tables' names, and their rows.
  static std::string Snapshot(const std::string& url) {
    return PostgresServer::Execute(
        url,
        "SELECT (SELECT string_agg(tablename, ' ' ORDER BY tablename) FROM pg_tables WHERE "
        "schemaname = 'public') || database_to_xml(true, true, '')");
  }
  static Rows Query(const std::string& url, const std::string& sql) {
    return PostgresServer::Query(url, sql);
  }

  PostgresServer server;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Postgres, HistoryBackend, ::testing::Types<PostgresBackend>);

// A history of its own on a private server, the pump station's description written.
class PostgresHistoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VANTREL_NEED_POSTGRES(server);
    url = server.NewDatabase();
  }
  std::unique_ptr<PostgresHistory> Open(PostgresHistoryOptions options) {
    options.url = url;
    std::string error;
    auto history = PostgresHistory::Open(std::move(options), error);
    EXPECT_TRUE(history) << error;
    if (history) {
      history->DescriptionLoaded(Pumps());
      EXPECT_TRUE(history->Flush(10s));
    }
    return history;
  }

  PostgresServer server;
  std::string url;
};

TEST_F(PostgresHistoryTest, KeepsTextsExactlyAndNumbersAsNumbers) {
  auto history = Open({});
  ASSERT_TRUE(history);
  // Texts that COPY and JSON must carry unchanged: tab, newline, backslash, quote, a
  // Windows-1252 letter, and a zero byte (which PostgreSQL cannot hold: U+FFFD); raw values
  // that are not whole numbers stay texts.
  HistoryRow row = Record(1, std::string("a\tb\nc\\d\"e\xE9", 10) + std::string(1, '\0') + "z");
  row.raw = {"3.5", "TNK1\x01"};
  history->RowAdded(row);
  ASSERT_TRUE(history->Flush(10s));
  EXPECT_EQ(history->LastError(), "");
  EXPECT_EQ(
      PostgresServer::Query(url,
                            "SELECT kind, record_number, pc_time, status, "
                            "coalesce(missed, -1), display::text, raw::text, shown FROM rows"),
      (Rows{{"record", "1", "2026-11-23 09:00:01.25", "Run", "-1",
             "[\"a\\tb\\nc\\\\d\\\"eé\xEF\xBF\xBDz\", 1.5]", "[\"3.5\", \"TNK1\\u0001\"]",
             "a\tb\nc\\d\"eé\xEF\xBF\xBDz\t1.5"}}));
  // The view gives numbers for SQL to compute with, and none for texts.
  EXPECT_EQ(
      PostgresServer::Query(url, "SELECT caption, number FROM record_values ORDER BY column_index"),
      (Rows{{"Pump state", "NULL"}, {"Level", "1.5"}}));
}

// While the server is away rows wait in a spool; a full spool loses the newest rows and says
// how many. Closing while the server is away gives up after the wait and says so.
TEST_F(PostgresHistoryTest, AFullSpoolAndClosingWhileAwayLoseRowsOnlyWithAReport) {
  std::atomic<int64_t> reported{0};
  std::atomic<bool> away{false};
  std::mutex mutex;
  std::string message;
  std::vector<std::string> notices;
  PostgresHistoryOptions options;
  options.spoolLimitBytes = 8192;
  options.closeWait = 500ms;
  options.notice = [&](std::string_view text) {
    std::lock_guard lock(mutex);
    notices.emplace_back(text);
    if (text.find("unreachable") != std::string_view::npos) away = true;
  };
  options.rowsLost = [&](int64_t rows, std::string_view text) {
    reported += rows;
    std::lock_guard lock(mutex);
    message = text;
  };
  auto history = Open(options);
  ASSERT_TRUE(history);
  ASSERT_TRUE(server.Stop());
  // The batch under way when the server goes away waits in memory; what comes after it
  // goes to the spool.
  history->RowAdded(Record(1));
  for (int i = 0; i < 100 && !away; ++i)
    std::this_thread::sleep_for(50ms);
  ASSERT_TRUE(away);
  for (int n = 2; n <= 300; ++n)
    history->RowAdded(Record(n));
  for (int i = 0; i < 100 && history->RowsSpooled() + static_cast<size_t>(reported) < 299; ++i)
    std::this_thread::sleep_for(50ms);
  ASSERT_TRUE(server.Start());
  ASSERT_TRUE(history->Flush(30s));
  const std::vector<int> stored = StoredRecords(url);
  EXPECT_EQ(history->RowsLost(), reported.load());
  ExpectStoredOnceOrLost(stored, 300, reported.load());
  // What the spool held are the oldest rows.
  ASSERT_FALSE(stored.empty());
  EXPECT_EQ(stored.back(), static_cast<int>(stored.size()));
  {
    std::lock_guard lock(mutex);
    EXPECT_NE(message.find("history rows lost"), std::string::npos) << message;
    EXPECT_NE(message.find("spool"), std::string::npos) << message;
    EXPECT_NE(notices.back().find("back"), std::string::npos) << notices.back();
  }

  const int64_t lostBefore = reported.load();
  ASSERT_TRUE(server.Stop());
  for (int n = 301; n <= 310; ++n)
    history->RowAdded(Record(n));
  const auto start = std::chrono::steady_clock::now();
  history->Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
  EXPECT_EQ(history->RowsLost(), lostBefore + 10);
  EXPECT_EQ(reported.load(), lostBefore + 10);
  std::lock_guard lock(mutex);
  EXPECT_NE(message.find("closing while the history server is away"), std::string::npos) << message;
}

TEST_F(PostgresHistoryTest, ConnectionsEndedAtRandomLoseAndDoubleNothing) {
  auto history = Open({});
  ASSERT_TRUE(history);
  // Another session ends the writer's connection again and again, at whatever point of a
  // batch it happens to be: before, during or after its commit.
  std::atomic<bool> writing{true};
  std::atomic<int> ended{0};
  std::thread killer([&] {
    while (writing) {
      const std::string n = PostgresServer::Execute(
          url,
          "SELECT count(pg_terminate_backend(pid)) FROM pg_stat_activity WHERE "
          "application_name = 'vantrel'");
      if (n != "0" && n.rfind("error", 0) != 0) ended += std::stoi(n);
      std::this_thread::sleep_for(std::chrono::milliseconds(7 + ended % 13));
    }
  });
  constexpr int kRows = 20000;
  for (int n = 1; n <= kRows; ++n) {
    history->RowAdded(Record(n));
    if (n % 100 == 0) std::this_thread::sleep_for(10ms);
  }
  std::this_thread::sleep_for(300ms);
  writing = false;
  killer.join();
  ASSERT_TRUE(history->Flush(60s));
  EXPECT_GT(ended.load(), 3);
  EXPECT_EQ(history->RowsLost(), 0);
  std::vector<int> all(kRows);
  std::iota(all.begin(), all.end(), 1);
  EXPECT_EQ(StoredRecords(url), all);
}

}  // namespace
}  // namespace vantrel::history
