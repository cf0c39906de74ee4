// Rows per second into a PostgreSQL record history: 12-column rows through the history sink
// (queued, written by its worker with COPY, one transaction per batch with the batch number
// kept for exactly-once), against the same rows written directly as plain multi-row inserts
// into a table of typed columns, in the same run and into the same server. The server is a
// private one started for the run (scripts/postgres-test-server.sh, syncing to disk).

#include <benchmark/benchmark.h>
#include <libpq-fe.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "history_rows.h"
#include "vantrel/history/postgres_history.h"

namespace vantrel {
namespace {

using namespace bench;

// The server for the whole run, stopped and removed at exit.
class Server {
 public:
  Server() {
    std::string pattern = "/tmp/vpg-bench-XXXXXX";
    dir_ = ::mkdtemp(pattern.data());
    std::filesystem::permissions(
        dir_, std::filesystem::perms::owner_all | std::filesystem::perms::others_exec);
    FILE* pipe = ::popen(("VANTREL_PG_FSYNC=on " + Script("start") + " 2>/dev/null").c_str(), "r");
    char line[512] = {};
    if (pipe != nullptr && std::fgets(line, sizeof line, pipe) != nullptr) url_ = line;
    if (pipe != nullptr && ::pclose(pipe) != 0) url_.clear();
    while (!url_.empty() && url_.back() == '\n')
      url_.pop_back();
  }
  ~Server() {
    if (!url_.empty()) std::system((Script("stop") + " >/dev/null 2>&1").c_str());
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  const std::string& Url() const { return url_; }
  // A fresh database for one measurement.
  std::string NewDatabase() {
    if (url_.empty()) return "";
    const std::string name = "bench" + std::to_string(++databases_);
    PGconn* c = PQconnectdb(url_.c_str());
    PQclear(PQexec(c, ("CREATE DATABASE " + name).c_str()));
    PQfinish(c);
    std::string url = url_;
    url.replace(url.find("/postgres?"), 10, "/" + name + "?");
    return url;
  }

 private:
  std::string Script(const char* action) const {
    return std::string("bash ") + VANTREL_SOURCE_DIR + "/scripts/postgres-test-server.sh " +
           action + " " + dir_;
  }
  std::string dir_;
  std::string url_;
  int databases_ = 0;
};

Server& TheServer() {
  static Server server;
  return server;
}

// A prepared INSERT of kPerInsert rows into `target` ("table (columns)" or "table"), each
// row of `parameters` values; Texts() holds the values of its next execution, row by row.
class MultiRowInsert {
 public:
  static constexpr int kPerInsert = 100;
  MultiRowInsert(PGconn* c, const std::string& target, int parameters)
      : c_(c), texts_(static_cast<size_t>(kPerInsert * parameters)), values_(texts_.size()) {
    std::string sql = "INSERT INTO " + target + " VALUES ";
    for (int i = 0, p = 1; i < kPerInsert; ++i) {
      sql += i == 0 ? "(" : ",(";
      for (int k = 0; k < parameters; ++k, ++p)
        sql += (k == 0 ? "$" : ",$") + std::to_string(p);
      sql += ")";
    }
    PQclear(PQprepare(c, "insert", sql.c_str(), static_cast<int>(texts_.size()), nullptr));
  }
  std::vector<std::string>& Texts() { return texts_; }
  // False with the server's message when the insert failed.
  bool Execute(benchmark::State& state) {
    for (size_t k = 0; k < texts_.size(); ++k)
      values_[k] = texts_[k].c_str();
    PGresult* result = PQexecPrepared(c_, "insert", static_cast<int>(values_.size()),
                                      values_.data(), nullptr, nullptr, 0);
    const bool ok = PQresultStatus(result) == PGRES_COMMAND_OK;
    if (!ok) state.SkipWithError(PQerrorMessage(c_));
    PQclear(result);
    return ok;
  }

 private:
  PGconn* c_;
  std::vector<std::string> texts_;
  std::vector<const char*> values_;
};

void BM_PostgresHistorySink(benchmark::State& state) {
  const auto& rows = TheRows();
  for (auto _ : state) {
    state.PauseTiming();
    std::string error;
    history::PostgresHistoryOptions options;
    options.url = TheServer().NewDatabase();
    auto history = history::PostgresHistory::Open(options, error);
    if (!history) {
      state.SkipWithError(error.c_str());
      return;
    }
    history->DescriptionLoaded(Description());
    history->Flush(std::chrono::seconds(60));
    state.ResumeTiming();
    for (const HistoryRow& row : rows)
      history->RowAdded(row);
    history->Flush(std::chrono::seconds(600));
  }
  state.SetItemsProcessed(int64_t{kRows} * state.iterations());
}

// The same values as one table of typed columns, 100 rows per INSERT, one transaction.
void BM_PostgresPlainMultiRowInserts(benchmark::State& state) {
  const auto& rows = TheRows();
  for (auto _ : state) {
    state.PauseTiming();
    PGconn* c = PQconnectdb(TheServer().NewDatabase().c_str());
    std::string create = "CREATE TABLE t (n bigint, at timestamp(3), status text";
    for (int col = 0; col < kColumns; ++col) {
      create += std::string(", v") + std::to_string(col) + (col % 3 == 0 ? " text" : " float8") +
                ", r" + std::to_string(col) + " bigint";
    }
    PQclear(PQexec(c, (create + ")").c_str()));
    MultiRowInsert insert(c, "t", 3 + 2 * kColumns);
    state.ResumeTiming();
    PQclear(PQexec(c, "BEGIN"));
    for (int r = 0; r < kRows; r += MultiRowInsert::kPerInsert) {
      std::vector<std::string>& texts = insert.Texts();
      size_t p = 0;
      for (int i = 0; i < MultiRowInsert::kPerInsert; ++i) {
        const HistoryRow& row = rows[static_cast<size_t>(r + i)];
        texts[p++] = std::to_string(row.recordNumber);
        texts[p++] = "2026-11-23 09:00:00.000";
        texts[p++] = row.status;
        for (size_t col = 0; col < kColumns; ++col) {
          texts[p++] = row.display[col];
          texts[p++] = row.raw[col];
        }
      }
      if (!insert.Execute(state)) break;
    }
    PQclear(PQexec(c, "COMMIT"));
    state.PauseTiming();
    PQfinish(c);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(int64_t{kRows} * state.iterations());
}

// The rows as the history stores them (cells as JSON, the shown line, the time index), but
// written by plain multi-row inserts of 100: what the history's own code costs beyond the
// storage it chose.
void BM_PostgresPlainInsertsOfTheHistorysRows(benchmark::State& state) {
  const auto& rows = TheRows();
  for (auto _ : state) {
    state.PauseTiming();
    const std::string url = TheServer().NewDatabase();
    {
      // The history makes the schema and records the description; it writes nothing more.
      std::string error;
      history::PostgresHistoryOptions options;
      options.url = url;
      auto history = history::PostgresHistory::Open(options, error);
      if (history) {
        history->DescriptionLoaded(Description());
        history->Flush(std::chrono::seconds(60));
      }
    }
    PGconn* c = PQconnectdb(url.c_str());
    // Under the description the history recorded, as its own rows are.
    MultiRowInsert insert(
        c, "rows (description_id, kind, record_number, pc_time, status, display, raw, shown)", 8);
    state.ResumeTiming();
    PQclear(PQexec(c, "BEGIN"));
    for (int r = 0; r < kRows; r += MultiRowInsert::kPerInsert) {
      std::vector<std::string>& texts = insert.Texts();
      size_t p = 0;
      for (int i = 0; i < MultiRowInsert::kPerInsert; ++i) {
        const HistoryRow& row = rows[static_cast<size_t>(r + i)];
        StoredTexts stored = Stored(row);
        texts[p++] = "1";
        texts[p++] = "record";
        texts[p++] = std::to_string(row.recordNumber);
        texts[p++] = std::move(stored.pcTime);
        texts[p++] = row.status;
        texts[p++] = std::move(stored.display);
        texts[p++] = std::move(stored.raw);
        texts[p++] = row.line;
      }
      if (!insert.Execute(state)) break;
    }
    PQclear(PQexec(c, "COMMIT"));
    state.PauseTiming();
    PQfinish(c);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(int64_t{kRows} * state.iterations());
}

BENCHMARK(BM_PostgresHistorySink)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);
BENCHMARK(BM_PostgresPlainInsertsOfTheHistorysRows)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(3);
BENCHMARK(BM_PostgresPlainMultiRowInserts)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(3);

}  // namespace
}  // namespace vantrel

BENCHMARK_MAIN();
