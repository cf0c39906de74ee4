#pragma once
// Owners for libpq's connection and results, and the few calls the PostgreSQL history makes.

#include <libpq-fe.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::history::pg {

struct ResultFree {
  void operator()(PGresult* r) const { PQclear(r); }
};
using Result = std::unique_ptr<PGresult, ResultFree>;

struct ConnectionFree {
  void operator()(PGconn* c) const { PQfinish(c); }
};
using Connection = std::unique_ptr<PGconn, ConnectionFree>;

// Connects to `url` with our defaults (a short connect timeout, UTF-8 texts); nullptr with
// `error` set when that fails.
Connection Connect(const std::string& url, std::string& error);

// Runs `sql` with text parameters; without parameters, `sql` may hold several statements.
Result Exec(PGconn* c, const char* sql, const std::vector<std::string>& parameters = {});

// True when the result is a success (a command, or rows).
bool Succeeded(const PGresult* r);

// Why a call failed, worth trying again later (the server went away, shuts down, or is out
// of resources) or not (the data or the schema is refused).
enum class Failure { Transient, Permanent };
Failure Classify(PGconn* c, const PGresult* r);

// The error of a failed call, on one line.
std::string ErrorText(PGconn* c, const PGresult* r);

// COPY's text format: backslash, tab, newline and carriage return escaped. PostgreSQL texts
// cannot hold a zero byte; it becomes U+FFFD.
void AppendCopyText(std::string& out, std::string_view text);
// A JSON text with every \u0000 escape turned into \ufffd, which jsonb accepts.
std::string JsonWithoutNul(std::string_view json);
// AppendCopyText of JsonWithoutNul(json), without the copy when there is no \u0000 in it.
void AppendCopyJson(std::string& out, std::string_view json);

}  // namespace vantrel::history::pg
