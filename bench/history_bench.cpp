// Rows per second into a SQLite record history: 12-column rows through the history sink
// (queued, written by its worker in batches), against the same rows written directly by
// plain multi-row inserts, in the same run: as the history stores them, and as a table of
// typed value columns without an index.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "history_rows.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel {
namespace {

using namespace bench;

std::string TempPath(const char* name) {
  return (std::filesystem::temp_directory_path() / name).string();
}

void Remove(const std::string& path) {
  for (const char* suffix : {"", "-wal", "-shm"})
    std::filesystem::remove(path + suffix);
}

// A history in a fresh file at `path` with the benchmark's description loaded; nullptr
// (and the benchmark skipped) when it cannot be opened.
std::unique_ptr<history::SqliteHistory> FreshHistory(const std::string& path,
                                                     benchmark::State& state) {
  Remove(path);
  std::string error;
  auto history = history::SqliteHistory::Open(path, error);
  if (!history) {
    state.SkipWithError(error.c_str());
    return nullptr;
  }
  history->DescriptionLoaded(Description());
  return history;
}

void BM_HistorySink(benchmark::State& state) {
  const auto& rows = TheRows();
  const std::string path = TempPath("vantrel-bench-history.db");
  for (auto _ : state) {
    state.PauseTiming();
    auto history = FreshHistory(path, state);
    if (!history) return;
    state.ResumeTiming();
    for (const HistoryRow& row : rows)
      history->RowAdded(row);
    history->Flush();
  }
  state.SetItemsProcessed(int64_t{kRows} * state.iterations());
}

// The same values as one table of typed columns, 100 rows per INSERT, one transaction.
void BM_PlainMultiRowInserts(benchmark::State& state) {
  const auto& rows = TheRows();
  const std::string path = TempPath("vantrel-bench-plain.db");
  for (auto _ : state) {
    state.PauseTiming();
    Remove(path);
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    std::string create = "CREATE TABLE t (n INTEGER, at TEXT, status TEXT";
    for (int c = 0; c < kColumns; ++c)
      create += ", v" + std::to_string(c) + ", r" + std::to_string(c);
    create += ")";
    sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL", nullptr, nullptr,
                 nullptr);
    sqlite3_exec(db, create.c_str(), nullptr, nullptr, nullptr);
    constexpr int kPerInsert = 100;
    std::string sql = "INSERT INTO t VALUES ";
    for (int i = 0; i < kPerInsert; ++i) {
      sql += i == 0 ? "(" : ",(";
      for (int p = 0; p < 3 + 2 * kColumns; ++p)
        sql += p == 0 ? "?" : ",?";
      sql += ")";
    }
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db, sql.c_str(), -1, &insert, nullptr);
    state.ResumeTiming();
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    for (int r = 0; r < kRows; r += kPerInsert) {
      int p = 1;
      for (int i = 0; i < kPerInsert; ++i) {
        const HistoryRow& row = rows[static_cast<size_t>(r + i)];
        sqlite3_bind_int64(insert, p++, row.recordNumber);
        sqlite3_bind_text(insert, p++, "2026-11-23 09:00:00.000", -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, p++, row.status.c_str(), -1, SQLITE_STATIC);
        for (int c = 0; c < kColumns; ++c) {
          const auto col = static_cast<size_t>(c);
          if (row.number[col]) {
            sqlite3_bind_double(insert, p++, *row.number[col]);
          } else {
            sqlite3_bind_text(insert, p++, row.display[col].c_str(), -1, SQLITE_STATIC);
          }
          sqlite3_bind_text(insert, p++, row.raw[col].c_str(), -1, SQLITE_STATIC);
        }
      }
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    state.PauseTiming();
    sqlite3_finalize(insert);
    sqlite3_close(db);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(int64_t{kRows} * state.iterations());
}

// The rows as the history stores them (cells as JSON, the shown line, the time index, the
// same page size and cache), but written by plain multi-row inserts of 100 in one
// transaction: what the history's own code (queue, worker, batching) costs beyond the
// storage it chose.
void BM_PlainInsertsOfTheHistorysRows(benchmark::State& state) {
  const auto& rows = TheRows();
  const std::string path = TempPath("vantrel-bench-stored.db");
  for (auto _ : state) {
    state.PauseTiming();
    {
      // The history makes the schema and records the description; it writes nothing more.
      auto history = FreshHistory(path, state);
      if (!history) return;
      history->Flush();
    }
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA cache_size=-16384",
                 nullptr, nullptr, nullptr);
    constexpr int kPerInsert = 100;
    std::string sql =
        "INSERT INTO rows (description_id, kind, record_number, pc_time, status, display, raw, "
        "shown) VALUES ";
    for (int i = 0; i < kPerInsert; ++i)
      sql += i == 0 ? "(1,'record',?,?,?,?,?,?)" : ",(1,'record',?,?,?,?,?,?)";
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db, sql.c_str(), -1, &insert, nullptr);
    std::vector<StoredTexts> stored(kPerInsert);
    state.ResumeTiming();
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    for (int r = 0; r < kRows; r += kPerInsert) {
      int p = 1;
      for (int i = 0; i < kPerInsert; ++i) {
        const HistoryRow& row = rows[static_cast<size_t>(r + i)];
        const StoredTexts& s = stored[static_cast<size_t>(i)] = Stored(row);
        sqlite3_bind_int64(insert, p++, row.recordNumber);
        sqlite3_bind_text(insert, p++, s.pcTime.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, p++, row.status.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, p++, s.display.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, p++, s.raw.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, p++, row.line.c_str(), -1, SQLITE_STATIC);
      }
      if (sqlite3_step(insert) != SQLITE_DONE) state.SkipWithError(sqlite3_errmsg(db));
      sqlite3_reset(insert);
    }
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    state.PauseTiming();
    sqlite3_finalize(insert);
    sqlite3_close(db);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(int64_t{kRows} * state.iterations());
}

BENCHMARK(BM_HistorySink)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);
BENCHMARK(BM_PlainInsertsOfTheHistorysRows)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(3);
BENCHMARK(BM_PlainMultiRowInserts)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);

}  // namespace
}  // namespace vantrel

BENCHMARK_MAIN();
