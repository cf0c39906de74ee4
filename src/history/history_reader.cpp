#include "vantrel/history/history_reader.h"

#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <map>

#include "encoded_row.h"
#include "sqlite_statement.h"
#include "vantrel/encoding.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::history {
namespace {

struct Database {
  sqlite3* db = nullptr;
  int64_t version = 0;
  ~Database() { sqlite3_close(db); }
};

class SqliteHistoryReader final : public HistoryReader {
 public:
  explicit SqliteHistoryReader(std::unique_ptr<Database> db) : db_(std::move(db)) {}
  std::vector<BufferSummary> Buffers(std::string& error) const override;
  bool ReadRange(const std::string& key, const std::string& from, const std::string& to,
                 std::vector<RecordedPart>& parts, std::string& error) const override;

 private:
  std::unique_ptr<Database> db_;
};

}  // namespace

std::unique_ptr<HistoryReader> HistoryReader::Open(const std::string& path, std::string& error) {
  auto database = std::make_unique<Database>();
  if (sqlite3_open_v2(path.c_str(), &database->db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
    error = "cannot open the history " + path + ": " + sqlite3_errmsg(database->db);
    return nullptr;
  }
  sqlite3_busy_timeout(database->db, 5000);
  Statement version(database->db, "SELECT version FROM vantrel_schema");
  if (!version.Ok() || !version.Next()) {
    // Only a readable database without our table is "not a Vantrel history"; a locked,
    // truncated or damaged file says so.
    const int code = sqlite3_errcode(database->db);
    if (code != SQLITE_OK && code != SQLITE_ERROR && code != SQLITE_DONE && code != SQLITE_ROW) {
      error = "cannot read the history " + path + ": " + sqlite3_errmsg(database->db);
    } else {
      error = path + " is not a Vantrel history" +
              (version.Failed() ? " (" + version.Error() + ")" : std::string());
    }
    return nullptr;
  }
  database->version = version.ColumnInt(0);
  if (database->version > kHistorySchemaVersion) {
    error = path + " has schema version " + std::to_string(database->version) +
            ", newer than this Vantrel's (" + std::to_string(kHistorySchemaVersion) + ")";
    return nullptr;
  }
  return std::make_unique<SqliteHistoryReader>(std::move(database));
}

std::vector<BufferSummary> SqliteHistoryReader::Buffers(std::string& error) const {
  std::vector<BufferSummary> buffers;
  Statement q(db_->db,
              "SELECT d.buffer_key, count(DISTINCT d.id), count(r.id), "
              "coalesce(sum(r.kind = 'record'), 0), coalesce(sum(r.missed), 0), "
              "coalesce(min(r.pc_time), ''), coalesce(max(r.pc_time), '') "
              "FROM descriptions d LEFT JOIN rows r ON r.description_id = d.id "
              "GROUP BY d.buffer_key ORDER BY d.buffer_key");
  while (q.Next()) {
    buffers.push_back({Utf8ToCp1252(q.ColumnText(0)), q.ColumnInt(1), q.ColumnInt(2),
                       q.ColumnInt(3), q.ColumnInt(4), q.ColumnText(5), q.ColumnText(6)});
  }
  if (!q.Ok() || q.Failed()) error = q.Error();
  return buffers;
}

bool SqliteHistoryReader::ReadRange(const std::string& key, const std::string& from,
                                    const std::string& to, std::vector<RecordedPart>& parts,
                                    std::string& error) const {
  // Rows written before their cells were kept as shown give the cells as stored.
  Statement rows(
      db_->db, db_->version >= 2
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
  Statement description(db_->db,
                        "SELECT buffer_key, title, version FROM descriptions WHERE id = ?");
  Statement columns(db_->db, db_->version >= 2
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
  rows.TextOrNull(1, key);
  rows.TextOrNull(2, from);
  rows.TextOrNull(3, to);
  int64_t current = -1;
  while (rows.Next()) {
    const int64_t id = rows.ColumnInt(0);
    if (id != current) {
      current = id;
      RecordedPart part;
      description.Reset();
      description.Int(1, id);
      if (description.Next()) {
        part.description.key = Utf8ToCp1252(description.ColumnText(0));
        part.description.title = Utf8ToCp1252(description.ColumnText(1));
        part.description.version = static_cast<int32_t>(description.ColumnInt(2));
      }
      columns.Reset();
      columns.Int(1, id);
      while (columns.Next()) {
        part.description.columns.push_back(
            {Utf8ToCp1252(columns.ColumnText(0)), static_cast<int16_t>(columns.ColumnInt(1)),
             columns.ColumnText(2), static_cast<int16_t>(columns.ColumnInt(3)),
             Utf8ToCp1252(columns.ColumnText(4)), static_cast<int32_t>(columns.ColumnInt(5))});
      }
      parts.push_back(std::move(part));
    }
    parts.back().rows.push_back({KindOf(rows.ColumnText(1)),
                                 static_cast<int32_t>(rows.ColumnInt(2)),
                                 ParseIsoTime(rows.ColumnText(3)), Utf8ToCp1252(rows.ColumnText(4)),
                                 Utf8ToCp1252(rows.ColumnText(5))});
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
      // A fraction of a second: ".5" is 500 milliseconds, ".05" is 50; as an end it covers
      // what its last digit covers (".5" runs to 599).
      size_t digits = 1;
      while (digits < rest.size() && digits <= 3 && rest[digits] >= '0' && rest[digits] <= '9')
        ++digits;
      if (rest[0] != '.' || digits == 1) return std::nullopt;
      milli = std::stoi(rest.substr(1, digits - 1));
      int step = 1;
      for (size_t d = digits; d <= 3; ++d)
        step *= 10;
      milli = milli * step + (end ? step - 1 : 0);
      rest.erase(0, digits);
    }
  }
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!rest.empty() || month < 1 || day < 1 || !date.ok() || hour > 23 || minute > 59 ||
      second > 59 || hour < 0 || minute < 0 || second < 0) {
    return std::nullopt;
  }
  char out[96];  // room for any int, though the checks above keep every field short
  std::snprintf(out, sizeof out, "%04d-%02d-%02d %02d:%02d:%02d.%03d", year, month, day, hour,
                minute, second, milli);
  return std::string(out);
}

}  // namespace vantrel::history
