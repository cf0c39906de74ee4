// The PostgreSQL history against a real server of its own: the scenarios every back end
// shares; texts exactly as COPY and JSON must carry them; a full spool that says what it
// lost; connections ended at random with nothing lost or doubled; closing while the server
// is away; a URL that is not PostgreSQL's. (Rows spooled through a server restart are in the
// fault soak, two writers into one database in the two-run test of tests/apps.)

#include "vantrel/history/postgres_history.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
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

PostgresHistoryOptions At(const std::string& url) {
  PostgresHistoryOptions options;
  options.url = url;
  return options;
}

std::unique_ptr<PostgresHistory> OpenHistory(PostgresHistoryOptions options) {
  std::string error;
  auto history = PostgresHistory::Open(std::move(options), error);
  EXPECT_TRUE(history) << error;
  return history;
}

// The record numbers of the record rows, in the order they were stored.
std::vector<int> StoredRecords(const std::string& url) {
  std::vector<int> numbers;
  for (const auto& row : PostgresServer::Query(
           url, "SELECT record_number FROM rows WHERE kind = 'record' ORDER BY id"))
    numbers.push_back(std::stoi(row[0]));
  return numbers;
}

std::vector<int> Numbers(int first, int last) {
  std::vector<int> numbers;
  for (int n = first; n <= last; ++n)
    numbers.push_back(n);
  return numbers;
}

// PostgreSQL histories, each a database of its own on a private server.
struct PostgresBackend {
  static constexpr const char* kTables =
      "SELECT tablename FROM pg_tables WHERE schemaname = 'public' ORDER BY tablename";
  static constexpr const char* kNotOurs = "not a Vantrel history (it has tables named rows";

  void SetUp() { VANTREL_NEED_POSTGRES(server); }
  std::string NewTarget() { return server.NewDatabase(); }
  static std::unique_ptr<RowSink> Open(const std::string& url, std::string& error) {
    return PostgresHistory::Open(At(url), error);
  }
  // Through the call that opens either kind of history by its setting.
  static std::unique_ptr<HistoryReader> OpenReader(const std::string& url, std::string& error) {
    return OpenHistoryReader(url, error);
  }
  static Rows Query(const std::string& url, const std::string& sql) {
    return PostgresServer::Query(url, sql);
  }

  PostgresServer server;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Postgres, HistoryBackend, ::testing::Types<PostgresBackend>);

TEST(PostgresHistory, KeepsTextsExactlyAndNumbersAsNumbers) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  const std::string url = server.NewDatabase();
  auto history = OpenHistory(At(url));
  ASSERT_TRUE(history);
  history->DescriptionLoaded(Pumps());
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

TEST(PostgresHistory, AFullSpoolLosesTheNewestRowsAndSaysHowMany) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  const std::string url = server.NewDatabase();
  std::atomic<int64_t> reported{0};
  std::atomic<bool> away{false};
  std::string message;
  std::mutex messageMutex;
  PostgresHistoryOptions options = At(url);
  options.spoolLimitBytes = 8192;
  std::vector<std::string> notices;
  options.notice = [&](std::string_view text) {
    std::lock_guard lock(messageMutex);
    notices.emplace_back(text);
    if (text.find("unreachable") != std::string_view::npos) away = true;
  };
  options.rowsLost = [&](int64_t rows, std::string_view text) {
    reported += rows;
    std::lock_guard lock(messageMutex);
    message = text;
  };
  auto history = OpenHistory(options);
  ASSERT_TRUE(history);
  history->DescriptionLoaded(Pumps());
  ASSERT_TRUE(history->Flush(10s));
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
  ASSERT_GT(reported.load(), 0) << "an 8 KiB spool cannot hold 299 rows";
  EXPECT_EQ(history->RowsLost(), reported.load());
  EXPECT_EQ(static_cast<int64_t>(stored.size()) + reported.load(), 300);
  // What the spool held are the oldest rows, in order.
  EXPECT_EQ(stored, Numbers(1, static_cast<int>(stored.size())));
  std::lock_guard lock(messageMutex);
  EXPECT_NE(message.find("history rows lost"), std::string::npos) << message;
  EXPECT_NE(message.find("spool"), std::string::npos) << message;
  EXPECT_NE(notices.back().find("back"), std::string::npos) << notices.back();
}

TEST(PostgresHistory, ConnectionsEndedAtRandomLoseAndDoubleNothing) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  const std::string url = server.NewDatabase();
  auto history = OpenHistory(At(url));
  ASSERT_TRUE(history);
  history->DescriptionLoaded(Pumps());
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
  EXPECT_EQ(StoredRecords(url), Numbers(1, kRows));
}

TEST(PostgresHistory, ClosingWhileTheServerIsAwayGivesUpAfterTheWaitAndSaysSo) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  const std::string url = server.NewDatabase();
  std::atomic<int64_t> reported{0};
  PostgresHistoryOptions options = At(url);
  options.closeWait = 500ms;
  options.rowsLost = [&](int64_t rows, std::string_view) { reported += rows; };
  auto history = OpenHistory(options);
  ASSERT_TRUE(history);
  history->DescriptionLoaded(Pumps());
  ASSERT_TRUE(history->Flush(10s));
  ASSERT_TRUE(server.Stop());
  for (int n = 1; n <= 10; ++n)
    history->RowAdded(Record(n));
  const auto start = std::chrono::steady_clock::now();
  history->Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
  EXPECT_EQ(history->RowsLost(), 10);
  EXPECT_EQ(reported.load(), 10);
  EXPECT_NE(history->LastError().find("closing while the history server is away"),
            std::string::npos);
}

// (URLs that do not parse or reach no server are refused in the two-run test of tests/apps.)
TEST(PostgresHistory, RefusesAUrlThatIsNotPostgres) {
  std::string error;
  EXPECT_FALSE(PostgresHistory::Open(At("mysql://localhost/db"), error));
  EXPECT_NE(error.find("not a PostgreSQL URL"), std::string::npos) << error;
}

}  // namespace
}  // namespace vantrel::history
