#include "postgres_connection.h"

#include <cstring>

namespace vantrel::history::pg {

Connection Connect(const std::string& url, std::string& error) {
  // Our defaults come first, so that what the URL says wins.
  const char* keywords[] = {"connect_timeout", "application_name", "dbname", nullptr};
  const char* values[] = {"5", "vantrel", url.c_str(), nullptr};
  Connection c(PQconnectdbParams(keywords, values, 1));
  if (c == nullptr || PQstatus(c.get()) != CONNECTION_OK) {
    error = c != nullptr ? ErrorText(c.get(), nullptr) : "out of memory";
    return nullptr;
  }
  if (PQsetClientEncoding(c.get(), "UTF8") != 0) {
    error = ErrorText(c.get(), nullptr);
    return nullptr;
  }
  return c;
}

Result Exec(PGconn* c, const char* sql, const std::vector<std::string>& parameters) {
  // Without parameters, the simple protocol: it takes several statements at once.
  if (parameters.empty()) return Result(PQexec(c, sql));
  std::vector<const char*> values;
  values.reserve(parameters.size());
  for (const std::string& p : parameters)
    values.push_back(p.c_str());
  return Result(PQexecParams(c, sql, static_cast<int>(values.size()), nullptr, values.data(),
                             nullptr, nullptr, 0));
}

bool Succeeded(const PGresult* r) {
  const ExecStatusType status = PQresultStatus(r);
  return r != nullptr && (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK);
}

Failure Classify(PGconn* c, const PGresult* r) {
  if (c == nullptr || PQstatus(c) == CONNECTION_BAD || r == nullptr) return Failure::Transient;
  const char* state = PQresultErrorField(r, PG_DIAG_SQLSTATE);
  if (state == nullptr) return Failure::Transient;
  // 08 connection, 40 rolled back (deadlock, serialization), 53 out of resources (disk
  // full), 57 operator intervention (shutdown), 58 system error: all pass with time.
  for (const char* passing : {"08", "40", "53", "57", "58"}) {
    if (std::strncmp(state, passing, 2) == 0) return Failure::Transient;
  }
  return Failure::Permanent;
}

std::string ErrorText(PGconn* c, const PGresult* r) {
  std::string text = r != nullptr ? PQresultErrorMessage(r) : "";
  if (text.empty() && c != nullptr) text = PQerrorMessage(c);
  while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
    text.pop_back();
  for (char& ch : text) {
    if (ch == '\n') ch = ' ';
  }
  return text.empty() ? "no answer from the server" : text;
}

void AppendCopyText(std::string& out, std::string_view text) {
  for (const char ch : text) {
    switch (ch) {
      case '\\':
        out += "\\\\";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\0':
        out += "\xEF\xBF\xBD";
        break;
      default:
        out += ch;
    }
  }
}

void AppendCopyJson(std::string& out, std::string_view json) {
  if (json.find("\\u0000") == std::string_view::npos) {
    AppendCopyText(out, json);
  } else {
    AppendCopyText(out, JsonWithoutNul(json));
  }
}

std::string JsonWithoutNul(std::string_view json) {
  std::string out;
  out.reserve(json.size());
  for (size_t i = 0; i < json.size(); ++i) {
    if (json[i] != '\\' || i + 1 >= json.size()) {
      out += json[i];
      continue;
    }
    // An escape: \u0000 is replaced, any other is copied whole so that "\\u0000" (a
    // backslash, then the letters) stays as it is.
    if (json.substr(i, 6) == "\\u0000") {
      out += "\\ufffd";
      i += 5;
    } else {
      out += json.substr(i, 2);
      ++i;
    }
  }
  return out;
}

}  // namespace vantrel::history::pg
