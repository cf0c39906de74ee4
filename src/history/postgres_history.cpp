#include "vantrel/history/postgres_history.h"

#include <unistd.h>

#include <atomic>
#include <charconv>
#include <deque>
#include <filesystem>
#include <optional>
#include <random>
#include <thread>

#include "encoded_row.h"
#include "history_queue.h"
#include "postgres_connection.h"
#include "spool.h"
#include "vantrel/encoding.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::history {
namespace {

using SteadyClock = std::chrono::steady_clock;

// The tables of the SQLite history with PostgreSQL's types, and the writers' bookkeeping
// that makes every batch count once.
constexpr const char* kSchema = R"sql(
CREATE TABLE vantrel_schema (version integer NOT NULL);
CREATE TABLE vantrel_writers (
  writer text PRIMARY KEY,
  host text NOT NULL,
  pid integer NOT NULL,
  source text NOT NULL,
  started_at timestamp(3) NOT NULL DEFAULT localtimestamp,
  last_batch bigint NOT NULL DEFAULT 0,
  description_id bigint
);
CREATE TABLE descriptions (
  id bigserial PRIMARY KEY,
  writer text REFERENCES vantrel_writers (writer),
  buffer_key text NOT NULL,
  title text NOT NULL,
  version integer NOT NULL,
  loaded_at timestamp(3) NOT NULL DEFAULT localtimestamp
);
CREATE TABLE description_columns (
  description_id bigint NOT NULL REFERENCES descriptions (id),
  column_index integer NOT NULL,
  caption text NOT NULL,
  register integer NOT NULL,
  type text NOT NULL,
  position integer NOT NULL,
  display_code text NOT NULL,
  width integer NOT NULL DEFAULT 0,
  PRIMARY KEY (description_id, column_index)
);
CREATE TABLE rows (
  id bigserial PRIMARY KEY,
  description_id bigint REFERENCES descriptions (id),
  kind text NOT NULL CHECK (kind IN ('record', 'miss', 'restart', 'status')),
  record_number bigint NOT NULL,
  pc_time timestamp(3) NOT NULL,
  status text NOT NULL,
  missed bigint,
  display jsonb,
  raw jsonb,
  shown text
);
CREATE INDEX rows_by_time ON rows (description_id, pc_time);
CREATE VIEW record_values AS
  SELECT d.buffer_key, r.pc_time, r.kind, r.record_number, r.status, c.column_index, c.caption,
         r.display -> c.column_index AS value, r.raw -> c.column_index AS raw,
         CASE WHEN jsonb_typeof(r.display -> c.column_index) = 'number'
              THEN (r.display ->> c.column_index)::double precision END AS number,
         d.writer
  FROM rows r
  JOIN descriptions d ON d.id = r.description_id
  JOIN description_columns c ON c.description_id = r.description_id
  WHERE r.kind = 'record';
)sql";

constexpr const char* kOurTables =
    "'vantrel_writers', 'descriptions', 'description_columns', 'rows', 'record_values'";

// Any constant shared by every Vantrel: writers that start together create the schema once.
constexpr const char* kSchemaLock = "SELECT pg_advisory_xact_lock(7306127354)";

bool RunSql(PGconn* c, const char* sql, std::string& error,
            const std::vector<std::string>& parameters = {}) {
  const pg::Result r = pg::Exec(c, sql, parameters);
  if (pg::Succeeded(r.get())) return true;
  error = pg::ErrorText(c, r.get());
  return false;
}

bool PrepareSchema(PGconn* c, std::string& error) {
  if (!RunSql(c, "BEGIN", error) || !RunSql(c, kSchemaLock, error)) return false;
  pg::Result ours = pg::Exec(c, "SELECT to_regclass('vantrel_schema') IS NOT NULL");
  if (!pg::Succeeded(ours.get())) {
    error = pg::ErrorText(c, ours.get());
    return false;
  }
  if (std::string_view(PQgetvalue(ours.get(), 0, 0)) == "t") {
    pg::Result version = pg::Exec(c, "SELECT max(version) FROM vantrel_schema");
    if (!pg::Succeeded(version.get()) || PQgetisnull(version.get(), 0, 0)) {
      error = "its vantrel_schema table holds no version";
      return false;
    }
    const long found = std::strtol(PQgetvalue(version.get(), 0, 0), nullptr, 10);
    if (found > kHistorySchemaVersion) {
      error = "its schema version " + std::to_string(found) + " is newer than this Vantrel's (" +
              std::to_string(kHistorySchemaVersion) + ")";
      return false;
    }
    return RunSql(c, "COMMIT", error);
  }
  const std::string clash =
      std::string(
          "SELECT string_agg(relname, ', ') FROM pg_class WHERE relnamespace = "
          "current_schema()::regnamespace AND relname IN (") +
      kOurTables + ")";
  pg::Result names = pg::Exec(c, clash.c_str());
  if (!pg::Succeeded(names.get())) {
    error = pg::ErrorText(c, names.get());
    return false;
  }
  if (!PQgetisnull(names.get(), 0, 0)) {
    error = std::string("it is not a Vantrel history (it has tables named ") +
            PQgetvalue(names.get(), 0, 0) + " and no vantrel_schema)";
    return false;
  }
  return RunSql(c, kSchema, error) &&
         RunSql(c, "INSERT INTO vantrel_schema VALUES ($1)", error,
                {std::to_string(kHistorySchemaVersion)}) &&
         RunSql(c, "COMMIT", error);
}

std::string NewWriterId() {
  std::random_device random;
  std::string id;
  for (int i = 0; i < 4; ++i) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, random(), 16).ptr;
    id.append(8 - static_cast<size_t>(end - digits), '0').append(digits, end);
  }
  return id;
}

std::string HostName() {
  char name[256] = {};
  return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
}

}  // namespace

struct PostgresHistory::Worker {
  static constexpr size_t kMaxBatchItems = 20000;

  PostgresHistoryOptions options;
  std::string writerId;
  pg::Connection connection;     // worker only once the thread runs
  std::unique_ptr<Spool> spool;  // worker only

  std::thread thread;
  HistoryQueue queue;
  std::atomic<size_t> spooled{0};  // items in the spool, for the host to see

  // Worker only.
  int64_t lastBatch = 0;  // the number of the last batch committed
  int64_t descriptionId = 0;
  std::vector<HistoryItem> inflight;  // the batch being written, kept until its fate is known
  std::deque<HistoryItem> pending;    // taken from the queue, neither batched nor spooled
  bool descriptionLost = false;       // rows after a lost description are lost too
  SteadyClock::time_point nextConnect;
  std::chrono::milliseconds backoff{250};

  void Done(size_t items) {
    spooled = spool->Items();
    queue.Done(items);
  }

  void Lose(size_t rows, size_t items, const std::string& why) {
    spooled = spool->Items();
    queue.Lose(rows, items, why);
  }

  void Notice(const std::string& text) {
    if (options.notice) options.notice(text);
  }

  void Disconnect(const std::string& why) {
    connection.reset();
    backoff = std::chrono::milliseconds(250);
    nextConnect = SteadyClock::now() + backoff;
    Notice("the history server is unreachable (" + why + "); rows wait in the spool");
  }

  void TryConnect() {
    std::string problem;
    connection = pg::Connect(options.url, problem);
    if (!connection) {
      backoff = std::min(backoff * 2, std::chrono::milliseconds(5000));
      nextConnect = SteadyClock::now() + backoff;
      return;
    }
    Notice("the history server is back; " + std::to_string(spool->Items()) +
           " spooled rows are being written");
  }

  enum class Outcome { Written, Transient, Permanent };

  // Rows items[first .. last) by COPY, in the order given.
  // nullopt when written, else why not.
  std::optional<pg::Failure> CopyRows(size_t first, size_t last, std::string& problem) {
    PGconn* c = connection.get();
    pg::Result start(PQexec(c,
                            "COPY rows (description_id, kind, record_number, pc_time, status, "
                            "missed, display, raw, shown) FROM STDIN"));
    if (PQresultStatus(start.get()) != PGRES_COPY_IN) {
      problem = pg::ErrorText(c, start.get());
      return pg::Classify(c, start.get());
    }
    const std::string description = descriptionId != 0 ? std::to_string(descriptionId) : "\\N";
    std::string data;
    for (size_t i = first; i < last; ++i) {
      const EncodedRow& r = std::get<EncodedRow>(inflight[i]);
      data += description;
      ((data += '\t') += r.kind) += '\t';
      (data += std::to_string(r.recordNumber)) += '\t';
      (data += r.PcTime()) += '\t';
      pg::AppendCopyText(data, r.Status());
      data += '\t';
      data += r.missed ? std::to_string(*r.missed) : "\\N";
      data += '\t';
      pg::AppendCopyJson(data, r.Display());
      data += '\t';
      pg::AppendCopyJson(data, r.Raw());
      data += '\t';
      pg::AppendCopyText(data, r.Shown());
      data += '\n';
    }
    if (PQputCopyData(c, data.data(), static_cast<int>(data.size())) != 1 ||
        PQputCopyEnd(c, nullptr) != 1) {
      problem = pg::ErrorText(c, nullptr);
      return pg::Failure::Transient;
    }
    std::optional<pg::Failure> failure;
    while (pg::Result r{PQgetResult(c)}) {
      if (!pg::Succeeded(r.get()) && !failure) {
        problem = pg::ErrorText(c, r.get());
        failure = pg::Classify(c, r.get());
      }
    }
    return failure;
  }

  std::optional<pg::Failure> InsertDescription(const HistoryDescription& d, std::string& problem) {
    PGconn* c = connection.get();
    pg::Result id =
        pg::Exec(c,
                 "INSERT INTO descriptions (writer, buffer_key, title, version) "
                 "VALUES ($1, $2, $3, $4) RETURNING id",
                 {writerId, Cp1252ToUtf8(d.key), Cp1252ToUtf8(d.title), std::to_string(d.version)});
    if (!pg::Succeeded(id.get())) {
      problem = pg::ErrorText(c, id.get());
      return pg::Classify(c, id.get());
    }
    descriptionId = std::strtoll(PQgetvalue(id.get(), 0, 0), nullptr, 10);
    for (size_t i = 0; i < d.columns.size(); ++i) {
      const HistoryColumn& col = d.columns[i];
      pg::Result added =
          pg::Exec(c, "INSERT INTO description_columns VALUES ($1, $2, $3, $4, $5, $6, $7, $8)",
                   {std::to_string(descriptionId), std::to_string(i), Cp1252ToUtf8(col.caption),
                    std::to_string(col.registerIndex), col.fieldType, std::to_string(col.position),
                    Cp1252ToUtf8(col.displayCode), std::to_string(col.widthTwips)});
      if (!pg::Succeeded(added.get())) {
        problem = pg::ErrorText(c, added.get());
        return pg::Classify(c, added.get());
      }
    }
    return std::nullopt;
  }

  // One transaction: the batch's items, and the writer's batch number moved on to
  // `number`, so that a batch whose commit was not confirmed is recognised when it is sent
  // again.
  Outcome WriteBatch(int64_t number, std::string& problem) {
    PGconn* c = connection.get();
    const int64_t descriptionBefore = descriptionId;
    auto failed = [&](pg::Failure failure) {
      if (PQstatus(c) == CONNECTION_OK) pg::Result(PQexec(c, "ROLLBACK"));
      descriptionId = descriptionBefore;
      return failure == pg::Failure::Transient ? Outcome::Transient : Outcome::Permanent;
    };
    auto refused = [&](const PGresult* r) {
      problem = pg::ErrorText(c, r);
      return failed(pg::Classify(c, r));
    };
    pg::Result begin(PQexec(c, "BEGIN"));
    if (!pg::Succeeded(begin.get())) return refused(begin.get());
    pg::Result state = pg::Exec(
        c, "SELECT last_batch, description_id FROM vantrel_writers WHERE writer = $1 FOR UPDATE",
        {writerId});
    if (!pg::Succeeded(state.get())) return refused(state.get());
    if (PQntuples(state.get()) == 0) {
      // Someone removed our writer's row: it comes back with the batches we know of.
      pg::Result again = pg::Exec(c,
                                  "INSERT INTO vantrel_writers (writer, host, pid, source, "
                                  "last_batch) VALUES ($1, $2, $3, $4, $5)",
                                  {writerId, HostName(), std::to_string(::getpid()), options.source,
                                   std::to_string(number - 1)});
      if (!pg::Succeeded(again.get())) return refused(again.get());
    } else if (std::strtoll(PQgetvalue(state.get(), 0, 0), nullptr, 10) >= number) {
      // Committed before the connection was lost: nothing to write again.
      descriptionId = PQgetisnull(state.get(), 0, 1)
                          ? 0
                          : std::strtoll(PQgetvalue(state.get(), 0, 1), nullptr, 10);
      pg::Result(PQexec(c, "ROLLBACK"));
      return Outcome::Written;
    }
    for (size_t at = 0; at < inflight.size();) {
      if (const auto* d = std::get_if<HistoryDescription>(&inflight[at])) {
        if (const auto failure = InsertDescription(*d, problem)) return failed(*failure);
        ++at;
        continue;
      }
      size_t end = at;
      while (end < inflight.size() && std::holds_alternative<EncodedRow>(inflight[end]))
        ++end;
      if (const auto failure = CopyRows(at, end, problem)) return failed(*failure);
      at = end;
    }
    pg::Result mark = pg::Exec(
        c,
        "UPDATE vantrel_writers SET last_batch = $2, description_id = NULLIF($3, '0')::bigint "
        "WHERE writer = $1",
        {writerId, std::to_string(number), std::to_string(descriptionId)});
    if (!pg::Succeeded(mark.get())) return refused(mark.get());
    pg::Result commit(PQexec(c, "COMMIT"));
    if (!pg::Succeeded(commit.get())) return refused(commit.get());
    return Outcome::Written;
  }

  // Writes the batch in flight, then the spool, then what came since, while the server
  // answers.
  void WriteWhatWaits() {
    while (connection) {
      if (inflight.empty()) {
        if (!spool->Empty()) {
          inflight = spool->Front(kMaxBatchItems);
          if (inflight.empty()) {
            spool->Pop(1);
            Lose(1, 1, "the spool file could not be read back");
            continue;
          }
          spool->Pop(inflight.size());
        } else if (!pending.empty()) {
          while (!pending.empty() && inflight.size() < kMaxBatchItems) {
            inflight.push_back(std::move(pending.front()));
            pending.pop_front();
          }
        } else {
          return;
        }
      }
      std::string problem;
      switch (WriteBatch(lastBatch + 1, problem)) {
        case Outcome::Written:
          ++lastBatch;
          Done(inflight.size());
          inflight.clear();
          break;
        case Outcome::Transient:
          Disconnect(problem);
          return;
        case Outcome::Permanent:
          Lose(RowsIn(inflight), inflight.size(), "the server refused a batch: " + problem);
          inflight.clear();
          break;
      }
    }
  }

  // While the server is away: what came goes to the spool, or is lost when it is full.
  void SpoolPending() {
    size_t rowsLost = 0;
    size_t itemsLost = 0;
    for (; !pending.empty(); pending.pop_front()) {
      const HistoryItem& item = pending.front();
      if (std::holds_alternative<HistoryDescription>(item)) {
        descriptionLost = !spool->Push(item, true);
        itemsLost += descriptionLost ? 1 : 0;
      } else if (descriptionLost || !spool->Push(item)) {
        ++rowsLost;
        ++itemsLost;
      }
    }
    spooled = spool->Items();
    if (itemsLost > 0) {
      Lose(rowsLost, itemsLost,
           "the spool (" + std::to_string(options.spoolLimitBytes) +
               " bytes) is full while the history server is away");
    }
  }

  void GiveUp() {
    const size_t items = inflight.size() + spool->Items() + pending.size();
    size_t rows = RowsIn(inflight) + RowsIn(pending);
    // The spool's items are read back only to be counted.
    while (!spool->Empty()) {
      const std::vector<HistoryItem> front = spool->Front(kMaxBatchItems);
      rows += RowsIn(front);
      spool->Pop(std::max<size_t>(front.size(), 1));
    }
    inflight.clear();
    pending.clear();
    Lose(rows, items, "closing while the history server is away");
  }

  void Run() {
    std::optional<SteadyClock::time_point> closeBy;
    while (true) {
      if (queue.Take(pending, std::chrono::milliseconds(100)) && !closeBy)
        closeBy = SteadyClock::now() + options.closeWait;
      if (!connection && SteadyClock::now() >= nextConnect) TryConnect();
      if (connection) WriteWhatWaits();
      if (!connection) SpoolPending();
      if (closeBy) {
        if (inflight.empty() && spool->Empty() && pending.empty()) break;
        if (SteadyClock::now() >= *closeBy) {
          GiveUp();
          break;
        }
      }
    }
  }
};

bool PostgresHistory::IsUrl(std::string_view text) {
  return text.starts_with("postgresql://") || text.starts_with("postgres://");
}

std::unique_ptr<PostgresHistory> PostgresHistory::Open(PostgresHistoryOptions options,
                                                       std::string& error) {
  if (!IsUrl(options.url)) {
    error = "\"" + options.url + "\" is not a PostgreSQL URL (postgresql://...)";
    return nullptr;
  }
  char* parseError = nullptr;
  PQconninfoOption* parsed = PQconninfoParse(options.url.c_str(), &parseError);
  if (parsed == nullptr) {
    std::string why = parseError != nullptr ? parseError : "it does not parse";
    PQfreemem(parseError);
    while (!why.empty() && why.back() == '\n')
      why.pop_back();
    error = "the history URL " + options.url + " does not parse: " + why;
    return nullptr;
  }
  PQconninfoFree(parsed);

  auto worker = std::make_unique<Worker>();
  std::string problem;
  worker->connection = pg::Connect(options.url, problem);
  if (!worker->connection) {
    error = "cannot reach the history " + options.url + ": " + problem;
    return nullptr;
  }
  if (!PrepareSchema(worker->connection.get(), problem)) {
    error = "cannot use " + options.url + " as a history: " + problem;
    return nullptr;
  }
  worker->writerId = NewWriterId();
  if (!RunSql(worker->connection.get(),
              "INSERT INTO vantrel_writers (writer, host, pid, source) VALUES ($1, $2, $3, $4)",
              problem,
              {worker->writerId, HostName(), std::to_string(::getpid()), options.source})) {
    error = "cannot use " + options.url + " as a history: " + problem;
    return nullptr;
  }
  std::error_code ignored;
  const std::string spoolDirectory = !options.spoolDirectory.empty()
                                         ? options.spoolDirectory
                                         : std::filesystem::temp_directory_path(ignored).string();
  worker->spool = Spool::Open(spoolDirectory, options.spoolLimitBytes, error);
  if (!worker->spool) return nullptr;
  worker->queue.OnRowsLost(options.rowsLost);
  worker->options = std::move(options);

  std::unique_ptr<PostgresHistory> history(new PostgresHistory(std::move(worker)));
  Worker* w = history->worker_.get();
  w->thread = std::thread([w] { w->Run(); });
  return history;
}

PostgresHistory::PostgresHistory(std::unique_ptr<Worker> worker) : worker_(std::move(worker)) {}

void PostgresHistory::Close() {
  worker_->queue.Stop();
  if (worker_->thread.joinable()) worker_->thread.join();
}

PostgresHistory::~PostgresHistory() {
  Close();
}

void PostgresHistory::DescriptionLoaded(const HistoryDescription& description) {
  worker_->queue.Push(description);
}

void PostgresHistory::RowAdded(const HistoryRow& row) {
  worker_->queue.Push(Encode(row));
}

bool PostgresHistory::Flush(std::chrono::milliseconds timeout) {
  return worker_->queue.Flush(timeout);
}

std::string PostgresHistory::LastError() const {
  return worker_->queue.FirstError();
}

int64_t PostgresHistory::RowsLost() const {
  return worker_->queue.RowsLost();
}

size_t PostgresHistory::RowsSpooled() const {
  return worker_->spooled;
}

}  // namespace vantrel::history
