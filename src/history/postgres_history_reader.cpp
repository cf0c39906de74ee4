#include "postgres_history_reader.h"

#include <cstdlib>
#include <string_view>

#include "encoded_row.h"
#include "postgres_connection.h"
#include "vantrel/encoding.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::history {
namespace {

// Times come back in the form the SQLite history stores them, so that both read alike.
constexpr const char* kTimeFormat = "'YYYY-MM-DD HH24:MI:SS.MS'";

class PostgresHistoryReader final : public HistoryReader {
 public:
  explicit PostgresHistoryReader(pg::Connection c) : c_(std::move(c)) {}

  std::vector<BufferSummary> Buffers(std::string& error) const override {
    std::vector<BufferSummary> buffers;
    const std::string sql =
        std::string(
            "SELECT d.buffer_key, count(DISTINCT d.id), count(r.id), "
            "count(*) FILTER (WHERE r.kind = 'record'), coalesce(sum(r.missed), 0), "
            "coalesce(to_char(min(r.pc_time), ") +
        kTimeFormat + "), ''), coalesce(to_char(max(r.pc_time), " + kTimeFormat +
        "), '') FROM descriptions d LEFT JOIN rows r ON r.description_id = d.id "
        "GROUP BY d.buffer_key ORDER BY d.buffer_key";
    const pg::Result r = pg::Exec(c_.get(), sql.c_str());
    if (!pg::Succeeded(r.get())) {
      error = pg::ErrorText(c_.get(), r.get());
      return buffers;
    }
    for (int i = 0; i < PQntuples(r.get()); ++i) {
      buffers.push_back({Utf8ToCp1252(Text(r, i, 0)), Int(r, i, 1), Int(r, i, 2), Int(r, i, 3),
                         Int(r, i, 4), Text(r, i, 5), Text(r, i, 6)});
    }
    return buffers;
  }

  bool ReadRange(const std::string& key, const std::string& from, const std::string& to,
                 std::vector<RecordedPart>& parts, std::string& error) const override {
    // Each run's rows stay together even where several runs of one buffer wrote at once.
    std::string sql = std::string("SELECT r.description_id, r.kind, r.record_number, to_char(") +
                      "r.pc_time, " + kTimeFormat +
                      "), r.status, r.shown FROM rows r JOIN descriptions d ON d.id = "
                      "r.description_id WHERE d.buffer_key = $1";
    std::vector<std::string> parameters{key};
    if (!from.empty()) {
      parameters.push_back(from);
      sql += " AND r.pc_time >= $" + std::to_string(parameters.size()) + "::timestamp";
    }
    if (!to.empty()) {
      parameters.push_back(to);
      sql += " AND r.pc_time <= $" + std::to_string(parameters.size()) + "::timestamp";
    }
    sql += " ORDER BY r.description_id, r.id";
    const pg::Result rows = pg::Exec(c_.get(), sql.c_str(), parameters);
    if (!pg::Succeeded(rows.get())) {
      error = pg::ErrorText(c_.get(), rows.get());
      return false;
    }
    std::string current;
    for (int i = 0; i < PQntuples(rows.get()); ++i) {
      const std::string id = Text(rows, i, 0);
      if (id != current) {
        current = id;
        RecordedPart part;
        if (!ReadDescription(id, part.description, error)) return false;
        parts.push_back(std::move(part));
      }
      parts.back().rows.push_back({KindOf(Text(rows, i, 1)), static_cast<int32_t>(Int(rows, i, 2)),
                                   ParseIsoTime(Text(rows, i, 3)), Utf8ToCp1252(Text(rows, i, 4)),
                                   Utf8ToCp1252(Text(rows, i, 5))});
    }
    return true;
  }

 private:
  static std::string Text(const pg::Result& r, int row, int column) {
    return std::string(PQgetvalue(r.get(), row, column),
                       static_cast<size_t>(PQgetlength(r.get(), row, column)));
  }
  static int64_t Int(const pg::Result& r, int row, int column) {
    return std::strtoll(PQgetvalue(r.get(), row, column), nullptr, 10);
  }

  bool ReadDescription(const std::string& id, HistoryDescription& d, std::string& error) const {
    const pg::Result head = pg::Exec(
        c_.get(), "SELECT buffer_key, title, version FROM descriptions WHERE id = $1", {id});
    const pg::Result columns =
        pg::Exec(c_.get(),
                 "SELECT caption, register, type, position, display_code, width FROM "
                 "description_columns WHERE description_id = $1 ORDER BY column_index",
                 {id});
    if (!pg::Succeeded(head.get()) || !pg::Succeeded(columns.get())) {
      error = pg::ErrorText(c_.get(), pg::Succeeded(head.get()) ? columns.get() : head.get());
      return false;
    }
    if (PQntuples(head.get()) == 1) {
      d.key = Utf8ToCp1252(Text(head, 0, 0));
      d.title = Utf8ToCp1252(Text(head, 0, 1));
      d.version = static_cast<int32_t>(Int(head, 0, 2));
    }
    for (int i = 0; i < PQntuples(columns.get()); ++i) {
      d.columns.push_back(
          {Utf8ToCp1252(Text(columns, i, 0)), static_cast<int16_t>(Int(columns, i, 1)),
           Text(columns, i, 2), static_cast<int16_t>(Int(columns, i, 3)),
           Utf8ToCp1252(Text(columns, i, 4)), static_cast<int32_t>(Int(columns, i, 5))});
    }
    return true;
  }

  pg::Connection c_;
};

}  // namespace

std::unique_ptr<HistoryReader> OpenPostgresHistoryReader(const std::string& url,
                                                         std::string& error) {
  char* parseError = nullptr;
  PQconninfoOption* parsed = PQconninfoParse(url.c_str(), &parseError);
  if (parsed == nullptr) {
    std::string why = parseError != nullptr ? parseError : "it does not parse";
    PQfreemem(parseError);
    while (!why.empty() && why.back() == '\n')
      why.pop_back();
    error = "the history URL " + url + " does not parse: " + why;
    return nullptr;
  }
  PQconninfoFree(parsed);
  std::string why;
  pg::Connection c = pg::Connect(url, why);
  if (c == nullptr) {
    error = "cannot reach the history " + url + ": " + why;
    return nullptr;
  }
  // Reading only: nothing here may change a database, ours or not.
  pg::Exec(c.get(), "SET default_transaction_read_only = on");
  const pg::Result ours = pg::Exec(c.get(), "SELECT to_regclass('vantrel_schema') IS NOT NULL");
  if (!pg::Succeeded(ours.get())) {
    error = url + ": " + pg::ErrorText(c.get(), ours.get());
    return nullptr;
  }
  const pg::Result found = std::string_view(PQgetvalue(ours.get(), 0, 0)) == "t"
                               ? pg::Exec(c.get(), "SELECT max(version) FROM vantrel_schema")
                               : nullptr;
  if (!pg::Succeeded(found.get()) || PQgetisnull(found.get(), 0, 0)) {
    error = url + " is not a Vantrel history";
    return nullptr;
  }
  const long version = std::strtol(PQgetvalue(found.get(), 0, 0), nullptr, 10);
  if (version > kHistorySchemaVersion) {
    error = url + " has schema version " + std::to_string(version) +
            ", newer than this Vantrel's (" + std::to_string(kHistorySchemaVersion) + ")";
    return nullptr;
  }
  return std::make_unique<PostgresHistoryReader>(std::move(c));
}

}  // namespace vantrel::history
