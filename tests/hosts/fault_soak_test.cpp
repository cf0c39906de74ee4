// Fault soak: a controller program writes records at a varying rate while faults are forced
// at random (bursts that overrun the ring, counter restarts, a paused program, a host that
// stops answering for a while, answers that come late), and every record written must be
// shown exactly once, in order, or counted in a "Miss " row. Simulated time runs as fast as
// the machine allows, for a wall-clock budget: a few seconds by default (CI), longer with
// VANTREL_SOAK_SECONDS=600. Every row also goes into a SQLite record history, which must
// hold each shown record once and the same missing counts (in soaks up to a minute, or with
// VANTREL_SOAK_HISTORY=1).

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "hosts/virtual_host.h"
#include "support/postgres_server.h"
#include "vantrel/history/history_reader.h"
#include "vantrel/history/postgres_history.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::hosts {
namespace {

// What a reader cannot notice is kept out of the soak: records overwritten between its read
// of the counters and its read of the records. So the ring holds more than the program writes
// while an ordinary read is under way, however late the answer; a burst beyond the ring comes
// only between reads, and the program then holds still until the whole ring has been read
// (the next record would overwrite the oldest slot, which that read fetches first).
constexpr int kRing = 200;
constexpr int kInterval = 50;  // ms between polls

double BudgetSeconds() {
  const char* text = std::getenv("VANTREL_SOAK_SECONDS");
  return text != nullptr ? std::atof(text) : 3.0;
}

bool WithHistory() {
  const char* text = std::getenv("VANTREL_SOAK_HISTORY");
  return text != nullptr ? std::string(text) != "0" : BudgetSeconds() <= 60;
}

// `postgres`, when given, is the server of a PostgreSQL history that is stopped for the
// middle third of the soak.
void Soak(testing::PostgresServer* postgres) {
  // The host answers late, only the newest request, and not while its link is down.
  VirtualPlant plant(NumberedRecords(kRing), Answering::Later);
  VirtualHost& host = plant.host;
  TraceProgram& program = plant.program;
  // Every row also goes to a record history, which must account for the records alike (not
  // in a long soak unless asked: it would fill the disk).
  std::string historyError;
  std::unique_ptr<history::SqliteHistory> recordHistory;
  if (WithHistory()) {
    recordHistory = history::SqliteHistory::Open(plant.dir.File("soak.db"), historyError);
    ASSERT_TRUE(recordHistory) << historyError;
  }
  std::unique_ptr<history::PostgresHistory> serverHistory;
  history::PostgresHistoryOptions options;
  if (postgres != nullptr) {
    options.url = postgres->NewDatabase();
    options.spoolDirectory = plant.dir.Path().string();
    serverHistory = history::PostgresHistory::Open(options, historyError);
    ASSERT_TRUE(serverHistory) << historyError;
  }
  const std::string& url = options.url;
  plant.Connect(kInterval, [&](Control& c) {
    for (RowSink* sink :
         {static_cast<RowSink*>(recordHistory.get()), static_cast<RowSink*>(serverHistory.get())})
      if (sink != nullptr) c.AddRowSink(sink);
    c.SetPCDStatusCol(true);
    c.SetMaxRows(1000);
    c.SetPCDStatus(2);
  });
  Control& control = *plant.control;
  auto step = [&](int ms) { plant.loop.Advance(ms); };
  step(100);
  ASSERT_EQ(control.ReadState(), 3);

  std::mt19937 random(20261123);
  auto chance = [&](int percent) { return static_cast<int>(random() % 100) < percent; };
  int64_t shown = 0, missed = 0;
  int restarts = 0, overruns = 0, outages = 0, oldestShownAfterMiss = 0;
  int64_t expectedNext = 1;  // the record number the next shown row must carry
  size_t seen = 0;
  bool afterMiss = false;
  int restartRows = 0;
  bool broken = false;
  // Reads the new lines: every record in order, gaps only where a Miss row counts them.
  auto account = [&] {
    for (; seen < host.lines.size() && !broken; ++seen) {
      const std::string& line = host.lines[seen];
      const std::string status = line.substr(0, line.find('\t'));
      if (status.rfind("Miss ", 0) == 0) {
        const int64_t count = std::stoll(status.substr(5));
        missed += count;
        expectedNext += count;
        afterMiss = true;
        continue;
      }
      if (status == "Restart") {
        ++restartRows;
        continue;
      }
      const std::string rest = line.substr(line.find('\t') + 1);
      const int64_t number = std::stoll(rest.substr(0, rest.find('\t')));
      // When the write index stands at slot 0, the reload after an overrun reads every slot,
      // the write slot too: the oldest record, counted in the Miss row, is shown as well.
      if (afterMiss && number == expectedNext - 1) {
        --missed;
        --expectedNext;
        ++oldestShownAfterMiss;
      }
      afterMiss = false;
      if (number != expectedNext) {
        std::string context;
        for (size_t k = seen > 10 ? seen - 10 : 0; k <= seen; ++k)
          context += "\n  " + host.lines[k];
        ADD_FAILURE() << "record " << number << " shown where " << expectedNext
                      << " was due; the lines up to it:" << context;
        broken = true;
        return;
      }
      ++expectedNext;
      ++shown;
    }
    // A long soak sees hundreds of millions of rows: only the unread ones are kept.
    if (!broken) {
      host.lines.clear();
      seen = 0;
    }
  };
  auto caughtUp = [&] { return shown + missed == program.RecordsWritten(); };

  int stops = 0;         // of the PostgreSQL server: stopped, then started again
  bool holding = false;  // after an overrun, until the reader has caught up
  const auto start = std::chrono::steady_clock::now();
  const auto budget = std::chrono::duration<double>(BudgetSeconds());
  while (std::chrono::steady_clock::now() - start < budget && !broken) {
    // The PostgreSQL server goes away for the middle third of the soak.
    if (postgres != nullptr && stops < 2 &&
        (std::chrono::steady_clock::now() - start) / budget > (stops + 1) / 3.0) {
      ASSERT_TRUE(stops == 0 ? postgres->Stop() : postgres->Start());
      ++stops;
    }
    // The program's own pace: a few records per poll, sometimes a burst beyond the ring.
    if (holding && caughtUp()) holding = false;
    // A burst right after a restart would take the counter past its old value before the
    // reader saw it go down: bursts wait until the restart has been seen.
    const bool betweenReads = control.ReadState() == 3 && host.Idle() && restartRows == restarts;
    if (holding) {
      // nothing written
    } else if (chance(3) && betweenReads) {
      holding = true;
      program.WriteRecords(kRing + static_cast<int>(random() % (3 * kRing)));
      ++overruns;
    } else {
      program.WriteRecords(static_cast<int>(random() % 4));
    }
    if (chance(2)) program.SetPaused(!chance(50));
    host.delayMs = chance(10) ? static_cast<int>(random() % 400) : static_cast<int>(random() % 5);
    if (chance(2)) {
      // The link goes down for up to a second.
      host.down = true;
      step(static_cast<int>(100 + random() % 900));
      host.down = false;
      ++outages;
    }
    step(kInterval);
    account();
    // A restart loses what the control has not read yet, and nothing could count it: the
    // program restarts only once the control has caught up, between two reads.
    // A reader sees a restart only as a counter that went down: one that climbs back past
    // the old count before the next read cannot be told from new records, so the program
    // restarts only from a count that one poll interval cannot reach again.
    if (chance(2) && caughtUp() && control.ReadState() == 3 && host.Idle() &&
        program.Counter() > kRing) {
      program.RestartCounter();
      ++restarts;
    }
  }
  // No more faults: the control catches up with everything written.
  program.SetPaused(false);
  host.delayMs = 0;
  for (int i = 0; i < 200 && !caughtUp() && !broken; ++i) {
    step(kInterval);
    account();
  }
  const int64_t written = program.RecordsWritten();
  std::printf(
      "soak: %lld written, %lld shown, %lld counted missing, %d overruns, %d restarts, "
      "%d outages (%d reloads showed the oldest record too)\n",
      static_cast<long long>(written), static_cast<long long>(shown),
      static_cast<long long>(missed), overruns, restarts, outages, oldestShownAfterMiss);
  EXPECT_EQ(shown + missed, written) << "records unaccounted for";
  EXPECT_GT(overruns, 0);
  EXPECT_GT(restarts, 0);
  EXPECT_GT(outages, 0);
  EXPECT_TRUE(host.errors.empty()) << host.errors.front();

  if (postgres != nullptr) {
    control.RemoveRowSink(serverHistory.get());
    ASSERT_EQ(stops, 2) << "the soak ended before the server came back";
    ASSERT_TRUE(serverHistory->Flush(std::chrono::seconds(60)));
    EXPECT_EQ(serverHistory->RowsLost(), 0);
    const std::string records =
        "(SELECT id, split_part(shown, E'\\t', 1)::bigint AS n FROM rows WHERE kind = 'record') r";
    // Every shown record once, in the order shown, and the same missing counts.
    const std::pair<std::string, std::string> checks[] = {
        {"SELECT count(*) || ' ' || count(DISTINCT n) FROM " + records,
         std::to_string(shown) + " " + std::to_string(shown)},
        {"SELECT count(*) FROM (SELECT n, lag(n) OVER (ORDER BY id) AS before FROM " + records +
             ") o WHERE before >= n",
         "0"},
        {"SELECT coalesce(sum(missed), 0) FROM rows",
         std::to_string(missed + oldestShownAfterMiss)}};
    for (const auto& [query, expected] : checks)
      EXPECT_EQ(testing::PostgresServer::Execute(url, query), expected) << query;
  }
  if (!recordHistory) return;
  control.RemoveRowSink(recordHistory.get());
  recordHistory->Flush();
  EXPECT_EQ(recordHistory->LastError(), "");
  recordHistory.reset();
  // The Miss rows' own counts include the oldest records a reload showed as well.
  const auto reader = history::HistoryReader::Open(plant.dir.File("soak.db"), historyError);
  ASSERT_TRUE(reader) << historyError;
  const std::vector<history::BufferSummary> buffers = reader->Buffers(historyError);
  ASSERT_EQ(buffers.size(), 1u) << historyError;
  EXPECT_EQ(buffers[0].records, shown);
  EXPECT_EQ(buffers[0].missed, missed + oldestShownAfterMiss);
}

TEST(FaultSoak, EveryRecordIsShownOnceOrCountedMissing) {
  Soak(nullptr);
}

// The same soak with a PostgreSQL history whose server is stopped and started again during
// the run: the history still holds every shown record once, in order.
TEST(FaultSoak, APostgresHistoryKeepsEveryRecordOnceThroughAServerRestart) {
  testing::PostgresServer server;
  VANTREL_NEED_POSTGRES(server);
  Soak(&server);
}

}  // namespace
}  // namespace vantrel::hosts
