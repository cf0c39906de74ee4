#include "vantrel/history/sqlite_history.h"

#include <sqlite3.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <deque>
#include <optional>
#include <thread>
#include <variant>

#include "encoded_row.h"
#include "history_queue.h"
#include "sqlite_statement.h"
#include "vantrel/encoding.h"

namespace vantrel::history {
namespace {

constexpr const char* kSchema = R"sql(
CREATE TABLE vantrel_schema (version INTEGER NOT NULL);
CREATE TABLE descriptions (
  id INTEGER PRIMARY KEY,
  buffer_key TEXT NOT NULL,
  title TEXT NOT NULL,
  version INTEGER NOT NULL,
  loaded_at TEXT NOT NULL
);
CREATE TABLE description_columns (
  description_id INTEGER NOT NULL REFERENCES descriptions (id),
  column_index INTEGER NOT NULL,
  caption TEXT NOT NULL,
  register INTEGER NOT NULL,
  type TEXT NOT NULL,
  position INTEGER NOT NULL,
  display_code TEXT NOT NULL,
  width INTEGER NOT NULL DEFAULT 0,
  PRIMARY KEY (description_id, column_index)
);
CREATE TABLE rows (
  id INTEGER PRIMARY KEY,
  description_id INTEGER REFERENCES descriptions (id),
  kind TEXT NOT NULL CHECK (kind IN ('record', 'miss', 'restart', 'status')),
  record_number INTEGER NOT NULL,
  pc_time TEXT NOT NULL,
  status TEXT NOT NULL,
  missed INTEGER,
  display TEXT,
  raw TEXT,
  shown TEXT
);
CREATE INDEX rows_by_time ON rows (description_id, pc_time);
CREATE VIEW record_values AS
  SELECT d.buffer_key, r.pc_time, r.kind, r.record_number, r.status, c.column_index, c.caption,
         json_extract(r.display, '$[' || c.column_index || ']') AS value,
         json_extract(r.raw, '$[' || c.column_index || ']') AS raw
  FROM rows r
  JOIN descriptions d ON d.id = r.description_id
  JOIN description_columns c ON c.description_id = r.description_id
  WHERE r.kind = 'record';
)sql";

// SQLite's text for the last failure, with the system's reason when a file operation failed:
// "disk I/O error" alone does not tell a full disk or a file size limit from a bad disk.
// SQLite does not always keep the reason, so errno is cleared before each write (Execute,
// Statement::Step) and read right after it.
std::string ErrorText(sqlite3* db) {
  const int system = sqlite3_system_errno(db) != 0 ? sqlite3_system_errno(db) : errno;
  std::string text = sqlite3_errmsg(db);
  const int code = sqlite3_errcode(db);
  if ((code == SQLITE_IOERR || code == SQLITE_FULL || code == SQLITE_CANTOPEN) && system != 0)
    text += std::string(" (") + std::strerror(system) + ")";
  return text;
}

bool Execute(sqlite3* db, const char* sql, std::string& error) {
  char* message = nullptr;
  errno = 0;
  if (sqlite3_exec(db, sql, nullptr, nullptr, &message) == SQLITE_OK) return true;
  sqlite3_free(message);
  error = ErrorText(db);
  return false;
}

// Checks the file's pages before anything is written into it: rows appended to a damaged
// file could not be read back.
bool CheckIntact(sqlite3* db, std::string& error) {
  std::string verdict;
  const auto take = [](void* into, int, char** values, char**) {
    std::string& out = *static_cast<std::string*>(into);
    if (!out.empty()) out += "; ";
    out += values[0] != nullptr ? values[0] : "";
    return 0;
  };
  char* message = nullptr;
  if (sqlite3_exec(db, "PRAGMA quick_check", take, &verdict, &message) != SQLITE_OK) {
    sqlite3_free(message);
    error = "the file is damaged: " + ErrorText(db);
    return false;
  }
  if (verdict == "ok") return true;
  error = "the file is damaged: " + verdict.substr(0, 200);
  return false;
}

// Creates the schema in an empty database, or checks that an existing one is ours and not
// newer; nothing of a foreign database is touched.
bool PrepareSchema(sqlite3* db, std::string& error) {
  Statement tables(db, "SELECT count(*) FROM sqlite_schema");
  if (sqlite3_step(tables.get()) != SQLITE_ROW) {
    error = ErrorText(db);
    return false;
  }
  const int64_t count = sqlite3_column_int64(tables.get(), 0);
  if (count == 0) {
    return Execute(db, "BEGIN", error) && Execute(db, kSchema, error) &&
           Execute(
               db,
               ("INSERT INTO vantrel_schema VALUES (" + std::to_string(kHistorySchemaVersion) + ")")
                   .c_str(),
               error) &&
           Execute(db, "COMMIT", error);
  }
  Statement version(db, "SELECT version FROM vantrel_schema");
  if (version.get() == nullptr || sqlite3_step(version.get()) != SQLITE_ROW) {
    error = "it is not a Vantrel history (it has tables of its own and no vantrel_schema)";
    return false;
  }
  const int64_t found = sqlite3_column_int64(version.get(), 0);
  sqlite3_reset(version.get());
  if (found > kHistorySchemaVersion) {
    error = "its schema version " + std::to_string(found) + " is newer than this Vantrel's (" +
            std::to_string(kHistorySchemaVersion) + ")";
    return false;
  }
  if (found == 1) {
    // Version 2 keeps each row's cells as shown and each column's width, so that a range
    // can be shown and exported again exactly; rows of version 1 keep them as NULL.
    return Execute(db, "BEGIN", error) &&
           Execute(db,
                   "ALTER TABLE description_columns ADD COLUMN width INTEGER NOT NULL DEFAULT 0;"
                   "ALTER TABLE rows ADD COLUMN shown TEXT;"
                   "UPDATE vantrel_schema SET version = 2;",
                   error) &&
           Execute(db, "COMMIT", error);
  }
  return true;
}

}  // namespace

struct SqliteHistory::Worker {
  using Item = HistoryItem;
  static constexpr int kRowsPerInsert = 128;
  static constexpr int kRowParameters = 9;

  sqlite3* db = nullptr;
  std::thread thread;
  HistoryQueue queue;
  int64_t descriptionId = 0;  // worker only
  // The newest description and whether it is stored: when its batch could not be written,
  // it is stored again before the next rows, so that no row is ever without its description.
  std::optional<HistoryDescription> newestDescription;
  bool newestStored = true;

  ~Worker() { sqlite3_close(db); }

  // Rows batch[first .. last) into `statement`, which has exactly that many row slots.
  bool InsertRows(Statement& statement, const std::deque<Item>& batch, size_t first, size_t last) {
    int p = 1;
    for (size_t i = first; i < last; ++i) {
      const EncodedRow& r = std::get<EncodedRow>(batch[i]);
      if (descriptionId != 0) {
        statement.Int(p, descriptionId);
      } else {
        statement.Null(p);
      }
      sqlite3_bind_text(statement.get(), p + 1, r.kind, -1, SQLITE_STATIC);
      statement.Int(p + 2, r.recordNumber);
      statement.StaticText(p + 3, r.PcTime());
      statement.StaticText(p + 4, r.Status());
      if (r.missed) {
        statement.Int(p + 5, *r.missed);
      } else {
        statement.Null(p + 5);
      }
      statement.StaticText(p + 6, r.Display());
      statement.StaticText(p + 7, r.Raw());
      statement.StaticText(p + 8, r.Shown());
      p += kRowParameters;
    }
    return statement.Step();
  }

  // Inserts a description and its columns; the rows that follow refer to it.
  bool StoreDescription(Statement& description, Statement& column, const HistoryDescription& d) {
    description.Text(1, Cp1252ToUtf8(d.key));
    description.Text(2, Cp1252ToUtf8(d.title));
    description.Int(3, d.version);
    if (!description.Step()) return false;
    descriptionId = sqlite3_last_insert_rowid(db);
    for (size_t i = 0; i < d.columns.size(); ++i) {
      const HistoryColumn& c = d.columns[i];
      column.Int(1, descriptionId);
      column.Int(2, static_cast<int64_t>(i));
      column.Text(3, Cp1252ToUtf8(c.caption));
      column.Int(4, c.registerIndex);
      column.Text(5, c.fieldType);
      column.Int(6, c.position);
      column.Text(7, Cp1252ToUtf8(c.displayCode));
      column.Int(8, c.widthTwips);
      if (!column.Step()) return false;
    }
    return true;
  }

  void Run() {
    Statement description(db,
                          "INSERT INTO descriptions (buffer_key, title, version, loaded_at) "
                          "VALUES (?, ?, ?, strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime'))");
    Statement column(db, "INSERT INTO description_columns VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    const std::string insertRows =
        "INSERT INTO rows (description_id, kind, record_number, pc_time, status, missed, "
        "display, raw, shown) VALUES ";
    std::string values = "(?, ?, ?, ?, ?, ?, ?, ?, ?)";
    Statement row(db, (insertRows + values).c_str());
    for (int i = 1; i < kRowsPerInsert; ++i)
      values += ", (?, ?, ?, ?, ?, ?, ?, ?, ?)";
    // Runs of rows go in one statement each: far fewer statement executions per row.
    Statement rows(db, (insertRows + values).c_str());
    std::deque<Item> batch;
    while (true) {
      // Rows that come close together share one transaction.
      const bool stopping = queue.Take(batch, std::chrono::milliseconds(100));
      if (batch.empty()) {
        if (stopping) break;
        continue;
      }
      std::string problem;
      const int64_t committedId = descriptionId;
      bool ok = Execute(db, "BEGIN", problem);
      if (ok && !newestStored && newestDescription) {
        ok = StoreDescription(description, column, *newestDescription);
      }
      for (size_t at = 0; ok && at < batch.size();) {
        if (std::holds_alternative<EncodedRow>(batch[at])) {
          size_t run = at;
          while (run < batch.size() && run - at < kRowsPerInsert &&
                 std::holds_alternative<EncodedRow>(batch[run])) {
            ++run;
          }
          if (run - at == kRowsPerInsert) {
            ok = InsertRows(rows, batch, at, run);
          } else {
            // A shorter run goes row by row through the one-row statement.
            for (size_t i = at; ok && i < run; ++i)
              ok = InsertRows(row, batch, i, i + 1);
          }
          at = run;
          continue;
        }
        if (auto* d = std::get_if<HistoryDescription>(&batch[at++])) {
          newestDescription = *d;
          newestStored = false;
          ok = StoreDescription(description, column, *d);
        }
      }
      if (ok) ok = Execute(db, "COMMIT", problem);
      if (ok) {
        newestStored = true;
        queue.Done(batch.size());
      } else {
        descriptionId = committedId;
        if (problem.empty()) problem = ErrorText(db);
        std::string ignored;
        Execute(db, "ROLLBACK", ignored);
        queue.Lose(RowsIn(batch), batch.size(), "the history could not be written: " + problem);
      }
      batch.clear();
    }
  }
};

std::unique_ptr<SqliteHistory> SqliteHistory::Open(const std::string& path, std::string& error,
                                                   int busyTimeoutMs) {
  auto worker = std::make_unique<Worker>();
  // The connection is used by one thread at a time (opened here, then only by the worker), so
  // SQLite need not lock it on every call.
  if (sqlite3_open_v2(path.c_str(), &worker->db,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                      nullptr) != SQLITE_OK) {
    error = "cannot open the history " + path + ": " + ErrorText(worker->db);
    return nullptr;
  }
  std::string problem;
  sqlite3_busy_timeout(worker->db, busyTimeoutMs);
  // Larger pages and a larger cache than SQLite's defaults: rows come in long runs, so fewer
  // and fuller pages are written per batch (the page size counts only for a new file). The
  // journal mode is kept in the file, so it is set only once the file is known to be ours.
  if (!Execute(worker->db, "PRAGMA page_size=16384", problem) ||
      !Execute(worker->db, "PRAGMA synchronous=NORMAL", problem) ||
      !Execute(worker->db, "PRAGMA cache_size=-16384", problem) ||
      !CheckIntact(worker->db, problem) || !PrepareSchema(worker->db, problem) ||
      !Execute(worker->db, "PRAGMA journal_mode=WAL", problem)) {
    error = "cannot use " + path + " as a history: " + problem;
    return nullptr;
  }
  std::unique_ptr<SqliteHistory> history(new SqliteHistory(std::move(worker)));
  Worker* w = history->worker_.get();
  w->thread = std::thread([w] { w->Run(); });
  return history;
}

SqliteHistory::SqliteHistory(std::unique_ptr<Worker> worker) : worker_(std::move(worker)) {}

SqliteHistory::~SqliteHistory() {
  worker_->queue.Stop();
  worker_->thread.join();
}

void SqliteHistory::DescriptionLoaded(const HistoryDescription& description) {
  worker_->queue.Push(description);
}

void SqliteHistory::RowAdded(const HistoryRow& row) {
  worker_->queue.Push(Encode(row));
}

void SqliteHistory::Flush() {
  worker_->queue.Flush();
}

void SqliteHistory::OnRowsLost(std::function<void(int64_t, std::string_view)> report) {
  worker_->queue.OnRowsLost(std::move(report));
}

std::string SqliteHistory::LastError() const {
  return worker_->queue.FirstError();
}

}  // namespace vantrel::history
