#pragma once
// A prepared SQLite statement, finalized with its owner: parameters bound by position,
// stepped for writes or read row by row.

#include <sqlite3.h>

#include <cerrno>
#include <cstdint>
#include <string>

namespace vantrel::history {

class Statement {
 public:
  Statement(sqlite3* db, const char* sql) : db_(db) {
    sqlite3_prepare_v2(db, sql, -1, &statement_, nullptr);
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  bool Ok() const { return statement_ != nullptr; }
  sqlite3_stmt* get() const { return statement_; }
  std::string Error() const { return sqlite3_errmsg(db_); }

  void Text(int index, std::string_view text) {
    sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
  }
  // The text must stay unchanged until the statement has been stepped.
  void StaticText(int index, std::string_view text) {
    sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }
  // An empty text binds NULL.
  void TextOrNull(int index, const std::string& text) {
    if (text.empty()) {
      Null(index);
    } else {
      Text(index, text);
    }
  }
  void Int(int index, int64_t value) { sqlite3_bind_int64(statement_, index, value); }
  void Null(int index) { sqlite3_bind_null(statement_, index); }

  // Runs a write and makes the statement ready for the next; true when it completed.
  bool Step() {
    errno = 0;  // so that a failure's system reason can be told (see ErrorText)
    const int result = sqlite3_step(statement_);
    sqlite3_reset(statement_);
    return result == SQLITE_DONE;
  }

  // Reading: true while there is a row; Failed() tells an error from the end.
  bool Next() {
    result_ = sqlite3_step(statement_);
    return result_ == SQLITE_ROW;
  }
  bool Failed() const { return result_ != SQLITE_DONE && result_ != SQLITE_ROW; }
  void Reset() { sqlite3_reset(statement_); }
  std::string ColumnText(int column) const {
    const auto* text = sqlite3_column_text(statement_, column);
    return text != nullptr
               ? std::string(reinterpret_cast<const char*>(text),
                             static_cast<size_t>(sqlite3_column_bytes(statement_, column)))
               : std::string();
  }
  int64_t ColumnInt(int column) const { return sqlite3_column_int64(statement_, column); }

 private:
  sqlite3* db_;
  sqlite3_stmt* statement_ = nullptr;
  int result_ = SQLITE_DONE;
};

}  // namespace vantrel::history
