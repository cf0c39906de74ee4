// The PostgreSQL history against a real server of its own: rows and texts exactly as given,
// in order; rows that wait in the spool while the server is away and come once; a full
// spool that says what it lost; connections ended at random with nothing lost or doubled;
// two writers at once; databases that are not ours, left alone.

#include "vantrel/history/postgres_history.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <tuple>

#include "support/postgres_server.h"
#include "support/temp_dir.h"
#include "vantrel/history/record_history.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::history {
namespace {

using testing::PostgresServer;
using namespace std::chrono_literals;

HistoryDescription Pumps(const std::string& title = "Pump station") {
  HistoryDescription d;
  d.key = "PMP1";
  d.title = title;
  d.version = 3;
  d.columns = {{"Pump state", 0, "Byte", 1, "s", 900}, {"Level", 1, "Word", 0, "2d", 1200}};
  return d;
}

HistoryRow Record(int number, std::string state = "Running") {
  HistoryRow row;
  row.recordNumber = number;
  row.pcTime = {2026, 11, 23, 9, 0, number % 60, 250};
  row.status = "Run";
  row.display = {std::move(state), std::to_string(number) + ".5"};
  row.number = {std::nullopt, number + 0.5};
  row.raw = {"3", std::to_string(number * 10 + 5)};
  row.line = row.display[0] + "\t" + row.display[1];
  return row;
}

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
std::vector<int> StoredRecords(const std::string& url, const std::string& where = "true") {
  std::vector<int> numbers;
  for (const auto& row :
       PostgresServer::Query(url,
                             "SELECT r.record_number FROM rows r JOIN descriptions d ON d.id = "
                             "r.description_id WHERE r.kind = 'record' AND " +
                                 where + " ORDER BY r.id")) {
    numbers.push_back(std::stoi(row[0]));
  }
  return numbers;
}

std::vector<int> Numbers(int first, int last) {
  std::vector<int> numbers;
  for (int n = first; n <= last; ++n)
    numbers.push_back(n);
  return numbers;
}

TEST(PostgresHistory, KeepsRowsTextsAndNumbersExactlyAndEachUnderItsDescription) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  const std::string url = server.NewDatabase();
  PostgresHistoryOptions options = At(url);
  options.source = "modbus://10.0.0.5:502";
  auto history = OpenHistory(options);
  ASSERT_TRUE(history);
  history->DescriptionLoaded(Pumps());
  // Texts that COPY and JSON must carry unchanged: tab, newline, backslash, quote, a
  // Windows-1252 letter, and a zero byte (which PostgreSQL cannot hold: U+FFFD).
  history->RowAdded(Record(1, std::string("a\tb\nc\\d\"e\xE9", 10) + std::string(1, '\0') + "z"));
  HistoryRow miss;
  miss.kind = HistoryRowKind::Miss;
  miss.recordNumber = 1;
  miss.pcTime = {2026, 11, 23, 9, 0, 2, 0};
  miss.status = "Miss 7";
  miss.missed = 7;
  history->RowAdded(miss);
  history->DescriptionLoaded(Pumps("Pump station, new layout"));
  history->RowAdded(Record(9));
  ASSERT_TRUE(history->Flush(10s));
  EXPECT_EQ(history->LastError(), "");

  const auto rows = PostgresServer::Query(
      url,
      "SELECT d.title, r.kind, r.record_number, r.pc_time, r.status, coalesce(r.missed, -1), "
      "r.display::text, r.raw::text, r.shown FROM rows r JOIN descriptions d ON d.id = "
      "r.description_id ORDER BY r.id");
  ASSERT_EQ(rows.size(), 3u) << rows[0][0];
  EXPECT_EQ(rows[0],
            (std::vector<std::string>{"Pump station", "record", "1", "2026-11-23 09:00:01.25",
                                      "Run", "-1", "[\"a\\tb\\nc\\\\d\\\"eé\xEF\xBF\xBDz\", 1.5]",
                                      "[3, 15]", "a\tb\nc\\d\"eé\xEF\xBF\xBDz\t1.5"}));
  EXPECT_EQ(rows[1][1], "miss");
  EXPECT_EQ(rows[1][5], "7");
  EXPECT_EQ(rows[1][0], "Pump station");
  EXPECT_EQ(rows[2][0], "Pump station, new layout");

  // The documented question in one query: a column's values between two times, as numbers.
  EXPECT_EQ(PostgresServer::Query(url,
                                  "SELECT number FROM record_values WHERE buffer_key = 'PMP1' "
                                  "AND caption = 'Level' AND pc_time BETWEEN '2026-11-23 "
                                  "09:00:00' AND '2026-11-23 09:00:05' ORDER BY pc_time"),
            (std::vector<std::vector<std::string>>{{"1.5"}}));
  EXPECT_EQ(
      PostgresServer::Query(url,
                            "SELECT column_index, caption, register, type, position, "
                            "display_code, width FROM description_columns ORDER BY "
                            "description_id, column_index LIMIT 2"),
      (std::vector<std::vector<std::string>>{{"0", "Pump state", "0", "Byte", "1", "s", "900"},
                                             {"1", "Level", "1", "Word", "0", "2d", "1200"}}));
  EXPECT_EQ(PostgresServer::Execute(url, "SELECT source FROM vantrel_writers"),
            "modbus://10.0.0.5:502");
}

TEST(PostgresHistory, RowsWaitInTheSpoolWhileTheServerIsAwayAndArriveOnceInOrder) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  const std::string url = server.NewDatabase();
  std::vector<std::string> notices;
  std::mutex noticesMutex;
  PostgresHistoryOptions options = At(url);
  options.notice = [&](std::string_view text) {
    std::lock_guard lock(noticesMutex);
    notices.emplace_back(text);
  };
  auto history = OpenHistory(options);
  ASSERT_TRUE(history);
  history->DescriptionLoaded(Pumps());
  for (int n = 1; n <= 100; ++n)
    history->RowAdded(Record(n));
  ASSERT_TRUE(history->Flush(10s));
  ASSERT_TRUE(server.Stop());
  // The batch under way when the server goes away waits in memory; the rows after it go to
  // the spool.
  history->RowAdded(Record(101));
  auto away = [&] {
    std::lock_guard lock(noticesMutex);
    return !notices.empty();
  };
  for (int i = 0; i < 100 && !away(); ++i)
    std::this_thread::sleep_for(50ms);
  for (int n = 102; n <= 600; ++n)
    history->RowAdded(Record(n));
  EXPECT_FALSE(history->Flush(1s)) << "written while the server was stopped";
  EXPECT_GT(history->RowsSpooled(), 0u);
  ASSERT_TRUE(server.Start());
  ASSERT_TRUE(history->Flush(30s));
  EXPECT_EQ(history->RowsSpooled(), 0u);
  EXPECT_EQ(history->RowsLost(), 0);
  EXPECT_EQ(history->LastError(), "");
  EXPECT_EQ(StoredRecords(url), Numbers(1, 600));
  std::lock_guard lock(noticesMutex);
  ASSERT_GE(notices.size(), 2u);
  EXPECT_NE(notices.front().find("unreachable"), std::string::npos) << notices.front();
  EXPECT_NE(notices.back().find("back"), std::string::npos) << notices.back();
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
  options.notice = [&](std::string_view text) {
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

TEST(PostgresHistory, TwoWritersIntoOneDatabaseEachKeepTheirWholeTrace) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  const std::string url = server.NewDatabase();
  PostgresHistoryOptions north = At(url);
  north.source = "north";
  PostgresHistoryOptions south = At(url);
  south.source = "south";
  auto first = OpenHistory(north);
  auto second = OpenHistory(south);
  ASSERT_TRUE(first && second);
  std::thread writer([&] {
    second->DescriptionLoaded(Pumps());
    for (int n = 1; n <= 5000; ++n)
      second->RowAdded(Record(n));
  });
  first->DescriptionLoaded(Pumps());
  for (int n = 1; n <= 5000; ++n)
    first->RowAdded(Record(n));
  writer.join();
  ASSERT_TRUE(first->Flush(30s));
  ASSERT_TRUE(second->Flush(30s));
  for (const char* source : {"north", "south"}) {
    EXPECT_EQ(StoredRecords(url, std::string("d.writer = (SELECT writer FROM vantrel_writers "
                                             "WHERE source = '") +
                                     source + "')"),
              Numbers(1, 5000))
        << source;
  }
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

TEST(PostgresHistory, RefusesWhatItCannotUseAndLeavesForeignDatabasesAlone) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  auto refusal = [](const std::string& url) {
    std::string error;
    EXPECT_FALSE(PostgresHistory::Open(At(url), error)) << url;
    return error;
  };
  // A database with a table of one of our names, and no schema marker of ours.
  const std::string foreign = server.NewDatabase();
  PostgresServer::Execute(foreign, "CREATE TABLE rows (a integer); INSERT INTO rows VALUES (42)");
  EXPECT_NE(refusal(foreign).find("not a Vantrel history (it has tables named rows"),
            std::string::npos);
  EXPECT_EQ(PostgresServer::Execute(foreign, "SELECT string_agg(a::text, ',') FROM rows"), "42");
  EXPECT_EQ(PostgresServer::Execute(foreign, "SELECT to_regclass('descriptions') IS NULL"), "t");
  // A history of a newer schema.
  const std::string newer = server.NewDatabase();
  { auto history = OpenHistory(At(newer)); }
  PostgresServer::Execute(newer, "UPDATE vantrel_schema SET version = 99");
  EXPECT_NE(refusal(newer).find("schema version 99 is newer"), std::string::npos);
  EXPECT_EQ(PostgresServer::Execute(newer, "SELECT version FROM vantrel_schema"), "99");
  // A URL that does not parse, one that is not PostgreSQL's, and a server that is not there.
  EXPECT_NE(refusal("postgresql://host:port:x/db?nosuchoption=1").find("does not parse"),
            std::string::npos);
  EXPECT_NE(refusal("mysql://localhost/db").find("not a PostgreSQL URL"), std::string::npos);
  EXPECT_NE(refusal("postgresql:///postgres?host=/nonexistent&user=vantrel")
                .find("cannot reach the history"),
            std::string::npos);
}

std::string TimeText(const DateTime& t) {
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d", t.year, t.month, t.day,
                t.hour, t.minute, t.second, t.millisecond);
  return text;
}

// A range read back as text, part by part: the description, then each row.
std::string Flatten(const std::vector<RecordedPart>& parts) {
  std::string text;
  for (const RecordedPart& part : parts) {
    const HistoryDescription& d = part.description;
    text += "part " + d.key + " " + d.title + " v" + std::to_string(d.version) + "\n";
    for (const HistoryColumn& c : d.columns) {
      text += "  column " + c.caption + " " + std::to_string(c.registerIndex) + " " + c.fieldType +
              " " + std::to_string(c.position) + " " + c.displayCode + " " +
              std::to_string(c.widthTwips) + "\n";
    }
    for (const RecordedRow& r : part.rows) {
      text += "  row " + std::to_string(static_cast<int>(r.kind)) + " " +
              std::to_string(r.recordNumber) + " " + TimeText(r.pcTime) + " " + r.status + " [" +
              r.line + "]\n";
    }
  }
  return text;
}

// A server history and a file history given the same rows read back alike, through the one
// call that opens either kind.
TEST(PostgresHistory, ReadsBackAsTheSameRowsAsAFileHistory) {
  PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  const std::string url = server.NewDatabase();
  testing::TempDir dir;
  const std::string file = dir.File("trace.db");
  {
    std::string error;
    auto postgres = OpenHistory(At(url));
    auto sqlite = SqliteHistory::Open(file, error);
    ASSERT_TRUE(postgres && sqlite) << error;
    std::vector<RowSink*> sinks{postgres.get(), sqlite.get()};
    for (RowSink* sink : sinks) {
      sink->DescriptionLoaded(Pumps());
      for (int n = 1; n <= 5; ++n)
        sink->RowAdded(Record(n, n == 3 ? "Caf\xE9 \"stop\"\ttab" : "Running"));
      HistoryRow miss;
      miss.kind = HistoryRowKind::Miss;
      miss.recordNumber = 5;
      miss.pcTime = {2026, 11, 23, 9, 0, 5, 999};
      miss.status = "Miss 4";
      miss.missed = 4;
      sink->RowAdded(miss);
      sink->DescriptionLoaded(Pumps("Pump station, second load"));
      for (int n = 10; n <= 12; ++n)
        sink->RowAdded(Record(n));
    }
    postgres->Close();
    sqlite->Flush();
    ASSERT_EQ(postgres->LastError(), "");
  }
  std::string error;
  const auto fromServer = OpenHistoryReader(url, error);
  ASSERT_TRUE(fromServer) << error;
  const auto fromFile = OpenHistoryReader(file, error);
  ASSERT_TRUE(fromFile) << error;

  const auto serverBuffers = fromServer->Buffers(error);
  const auto fileBuffers = fromFile->Buffers(error);
  ASSERT_EQ(serverBuffers.size(), 1u) << error;
  ASSERT_EQ(fileBuffers.size(), 1u);
  const BufferSummary& b = serverBuffers[0];
  EXPECT_EQ(b.key, "PMP1");
  EXPECT_EQ(b.descriptions, 2);
  EXPECT_EQ(b.rows, 9);
  EXPECT_EQ(b.records, 8);
  EXPECT_EQ(b.missed, 4);
  EXPECT_EQ(b.first, "2026-11-23 09:00:01.250");
  EXPECT_EQ(b.last, "2026-11-23 09:00:12.250");
  const BufferSummary& f = fileBuffers[0];
  EXPECT_EQ(std::tie(f.key, f.descriptions, f.rows, f.records, f.missed, f.first, f.last),
            std::tie(b.key, b.descriptions, b.rows, b.records, b.missed, b.first, b.last));

  for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
           {"", ""}, {"2026-11-23 09:00:03.000", "2026-11-23 09:00:10.250"}}) {
    std::vector<RecordedPart> serverParts;
    std::vector<RecordedPart> fileParts;
    ASSERT_TRUE(fromServer->ReadRange("PMP1", from, to, serverParts, error)) << error;
    ASSERT_TRUE(fromFile->ReadRange("PMP1", from, to, fileParts, error)) << error;
    EXPECT_EQ(Flatten(serverParts), Flatten(fileParts)) << from;
    ASSERT_EQ(serverParts.size(), 2u);
    EXPECT_EQ(serverParts[0].rows.front().recordNumber, from.empty() ? 1 : 3);
    EXPECT_EQ(serverParts[1].rows.back().recordNumber, from.empty() ? 12 : 10);
  }

  // A database that is not a history is refused, and left as it was.
  const std::string other = server.NewDatabase();
  EXPECT_FALSE(OpenHistoryReader(other, error));
  EXPECT_NE(error.find("is not a Vantrel history"), std::string::npos) << error;
  EXPECT_EQ(PostgresServer::Execute(other,
                                    "SELECT count(*) FROM pg_tables WHERE schemaname = "
                                    "'public'"),
            "0");
}

}  // namespace
}  // namespace vantrel::history
