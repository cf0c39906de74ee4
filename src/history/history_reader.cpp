#include "vantrel/history/history_reader.h"

#include <sqlite3.h>

#include <cstdio>
#include <map>

#include "vantrel/encoding.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::history {
namespace {

// A prepared statement, finalized with its owner.
class Query {
 public:
  Query(sqlite3* db, const char* sql) : db_(db) {
    sqlite3_prepare_v2(db, sql, -1, &statement_, nullptr);
  }
  ~Query() { sqlite3_finalize(statement_); }
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;
  bool Ok() const { return statement_ != nullptr; }
  void Bind(int index, const std::string& text) {
    if (text.empty()) {
      sqlite3_bind_null(statement_, index);
    } else {
      sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()),
                        SQLITE_TRANSIENT);
    }
  }
  void Bind(int index, int64_t value) { sqlite3_bind_int64(statement_, index, value); }
  void Reset() { sqlite3_reset(statement_); }
  // True while there is a row; Failed() tells an error from the end.
  bool Next() {
    result_ = sqlite3_step(statement_);
    return result_ == SQLITE_ROW;
  }
  bool Failed() const { return result_ != SQLITE_DONE && result_ != SQLITE_ROW; }
  std::string Error() const { return sqlite3_errmsg(db_); }
  std::string Text(int column) const {
    const auto* text = sqlite3_column_text(statement_, column);
    return text != nullptr
               ? std::string(reinterpret_cast<const char*>(text),
                             static_cast<size_t>(sqlite3_column_bytes(statement_, column)))
               : std::string();
  }
  int64_t Int(int column) const { return sqlite3_column_int64(statement_, column); }

 private:
  sqlite3* db_;
  sqlite3_stmt* statement_ = nullptr;
  int result_ = SQLITE_DONE;
};

HistoryRowKind KindOf(const std::string& text) {
  if (text == "miss") return HistoryRowKind::Miss;
  if (text == "restart") return HistoryRowKind::Restart;
  if (text == "status") return HistoryRowKind::Status;
  return HistoryRowKind::Record;
}

DateTime ParseTime(const std::string& text) {
  DateTime t;
  std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d.%d", &t.year, &t.month, &t.day, &t.hour, &t.minute,
              &t.second, &t.millisecond);
  return t;
}

}  // namespace

struct HistoryReader::Database {
  sqlite3* db = nullptr;
  int64_t version = 0;
  ~Database() { sqlite3_close(db); }
};

std::unique_ptr<HistoryReader> HistoryReader::Open(const std::string& path, std::string& error) {
  auto database = std::make_unique<Database>();
  if (sqlite3_open_v2(path.c_str(), &database->db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
    error = "cannot open the history " + path + ": " + sqlite3_errmsg(database->db);
    return nullptr;
  }
  sqlite3_busy_timeout(database->db, 5000);
  Query version(database->db, "SELECT version FROM vantrel_schema");
  if (!version.Ok() || !version.Next()) {
    error = path + " is not a Vantrel history" +
            (version.Failed() ? " (" + version.Error() + ")" : std::string());
    return nullptr;
  }
  database->version = version.Int(0);
  if (database->version > kHistorySchemaVersion) {
    error = path + " has schema version " + std::to_string(database->version) +
            ", newer than this Vantrel's (" + std::to_string(kHistorySchemaVersion) + ")";
    return nullptr;
  }
  return std::unique_ptr<HistoryReader>(new HistoryReader(std::move(database)));
}

HistoryReader::HistoryReader(std::unique_ptr<Database> db) : db_(std::move(db)) {}
HistoryReader::~HistoryReader() = default;

std::vector<BufferSummary> HistoryReader::Buffers(std::string& error) const {
  std::vector<BufferSummary> buffers;
  Query q(db_->db,
          "SELECT d.buffer_key, count(DISTINCT d.id), count(r.id), "
          "coalesce(sum(r.kind = 'record'), 0), coalesce(sum(r.missed), 0), "
          "coalesce(min(r.pc_time), ''), coalesce(max(r.pc_time), '') "
          "FROM descriptions d LEFT JOIN rows r ON r.description_id = d.id "
          "GROUP BY d.buffer_key ORDER BY d.buffer_key");
  while (q.Next()) {
    buffers.push_back(
        {Utf8ToCp1252(q.Text(0)), q.Int(1), q.Int(2), q.Int(3), q.Int(4), q.Text(5), q.Text(6)});
  }
  if (!q.Ok() || q.Failed()) error = q.Error();
  return buffers;
}

bool HistoryReader::ReadRange(const std::string& key, const std::string& from,
                              const std::string& to, std::vector<RecordedPart>& parts,
                              std::string& error) const {
  // Rows written before their cells were kept as shown give the cells as stored.
  Query rows(db_->db,
             db_->version >= 2
                 ? "SELECT r.description_id, r.kind, r.record_number, r.pc_time, r.status, "
                   "coalesce(r.shown, (SELECT group_concat(value, char(9)) FROM "
                   "json_each(r.display))) FROM rows r JOIN descriptions d ON d.id = "
                   "r.description_id WHERE d.buffer_key = ?1 AND (?2 IS NULL OR r.pc_time >= ?2) "
                   "AND (?3 IS NULL OR r.pc_time <= ?3) ORDER BY r.id"
                 : "SELECT r.description_id, r.kind, r.record_number, r.pc_time, r.status, "
                   "(SELECT group_concat(value, char(9)) FROM json_each(r.display)) FROM rows r "
                   "JOIN descriptions d ON d.id = r.description_id WHERE d.buffer_key = ?1 AND "
                   "(?2 IS NULL OR r.pc_time >= ?2) AND (?3 IS NULL OR r.pc_time <= ?3) "
                   "ORDER BY r.id");
  Query description(db_->db, "SELECT buffer_key, title, version FROM descriptions WHERE id = ?");
  Query columns(db_->db, db_->version >= 2
                             ? "SELECT caption, register, type, position, display_code, width "
                               "FROM description_columns WHERE description_id = ? "
                               "ORDER BY column_index"
                             : "SELECT caption, register, type, position, display_code, 0 "
                               "FROM description_columns WHERE description_id = ? "
                               "ORDER BY column_index");
  if (!rows.Ok() || !description.Ok() || !columns.Ok()) {
    error = rows.Error();
    return false;
  }
  rows.Bind(1, key);
  rows.Bind(2, from);
  rows.Bind(3, to);
  int64_t current = -1;
  while (rows.Next()) {
    const int64_t id = rows.Int(0);
    if (id != current) {
      current = id;
      RecordedPart part;
      description.Reset();
      description.Bind(1, id);
      if (description.Next()) {
        part.description.key = Utf8ToCp1252(description.Text(0));
        part.description.title = Utf8ToCp1252(description.Text(1));
        part.description.version = static_cast<int32_t>(description.Int(2));
      }
      columns.Reset();
      columns.Bind(1, id);
      while (columns.Next()) {
        part.description.columns.push_back(
            {Utf8ToCp1252(columns.Text(0)), static_cast<int16_t>(columns.Int(1)), columns.Text(2),
             static_cast<int16_t>(columns.Int(3)), Utf8ToCp1252(columns.Text(4)),
             static_cast<int32_t>(columns.Int(5))});
      }
      parts.push_back(std::move(part));
    }
    parts.back().rows.push_back({KindOf(rows.Text(1)), static_cast<int32_t>(rows.Int(2)),
                                 ParseTime(rows.Text(3)), Utf8ToCp1252(rows.Text(4)),
                                 Utf8ToCp1252(rows.Text(5))});
  }
  if (rows.Failed()) {
    error = rows.Error();
    return false;
  }
  return true;
}

std::optional<std::string> HistoryTime(const std::string& text, bool end) {
  int year = 0, month = 0, day = 0, hour = end ? 23 : 0, minute = end ? 59 : 0,
      second = end ? 59 : 0, milli = end ? 999 : 0;
  char separator = ' ';
  int used = 0;
  const int fields = std::sscanf(text.c_str(), "%4d-%2d-%2d%n%c%2d:%2d%n", &year, &month, &day,
                                 &used, &separator, &hour, &minute, &used);
  if (fields != 3 && fields != 6) return std::nullopt;
  if (fields == 6 && separator != ' ' && separator != 'T') return std::nullopt;
  std::string rest = text.substr(static_cast<size_t>(used));
  if (fields == 6 && !rest.empty()) {
    int more = 0;
    if (std::sscanf(rest.c_str(), ":%2d%n", &second, &more) != 1) return std::nullopt;
    rest.erase(0, static_cast<size_t>(more));
    if (!rest.empty()) {
      if (std::sscanf(rest.c_str(), ".%3d%n", &milli, &more) != 1) return std::nullopt;
      rest.erase(0, static_cast<size_t>(more));
    }
  }
  if (!rest.empty() || month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 ||
      second > 59 || hour < 0 || minute < 0 || second < 0 || milli < 0) {
    return std::nullopt;
  }
  char out[96];  // room for any int, though the checks above keep every field short
  std::snprintf(out, sizeof out, "%04d-%02d-%02d %02d:%02d:%02d.%03d", year, month, day, hour,
                minute, second, milli);
  return std::string(out);
}

}  // namespace vantrel::history
