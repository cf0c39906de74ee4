#pragma once
// A private PostgreSQL server for one test (scripts/postgres-test-server.sh): its own
// cluster in a fresh directory, reached through a Unix socket, removed with the test. Tests
// that need it skip where PostgreSQL is not installed, except in CI, where they fail.

#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::testing {

class PostgresServer {
 public:
  PostgresServer() {
    std::string pattern = "/tmp/vpg-XXXXXX";  // short: a socket path has at most 107 bytes
    if (::mkdtemp(pattern.data()) == nullptr) return;
    dir_ = pattern;
    std::filesystem::permissions(dir_, std::filesystem::perms::owner_all |
                                           std::filesystem::perms::group_exec |
                                           std::filesystem::perms::others_exec);
    started_ = running_ = Script("start");
  }
  ~PostgresServer() {
    if (running_) Script("stop");
    std::error_code ignored;
    if (!dir_.empty()) std::filesystem::remove_all(dir_, ignored);
  }
  PostgresServer(const PostgresServer&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;

  bool Running() const { return started_; }
  // The URL of the database `name` on this server.
  std::string Url(const std::string& name = "postgres") const {
    return "postgresql:///" + name + "?host=" + dir_ + "&user=vantrel";
  }
  // A new empty database; its URL.
  std::string NewDatabase() {
    const std::string name = "db" + std::to_string(++databases_);
    Execute(Url(), "CREATE DATABASE " + name);
    return Url(name);
  }
  bool Stop() {
    running_ = false;
    return Script("stop");
  }
  bool Start() { return running_ = Script("start"); }

  // Runs one statement; the first column of its first row, or "error: ...".
  static std::string Execute(const std::string& url, const std::string& sql) {
    const auto rows = Query(url, sql);
    return rows.empty() || rows[0].empty() ? "" : rows[0][0];
  }
  // Every row of `sql`, NULL as "NULL".
  static std::vector<std::vector<std::string>> Query(const std::string& url,
                                                     const std::string& sql) {
    std::vector<std::vector<std::string>> rows;
    PGconn* c = PQconnectdb(url.c_str());
    PGresult* r = PQexec(c, sql.c_str());
    const ExecStatusType status = PQresultStatus(r);
    if (status == PGRES_TUPLES_OK) {
      for (int i = 0; i < PQntuples(r); ++i) {
        std::vector<std::string> row;
        for (int j = 0; j < PQnfields(r); ++j)
          row.push_back(PQgetisnull(r, i, j) ? "NULL" : PQgetvalue(r, i, j));
        rows.push_back(std::move(row));
      }
    } else if (status != PGRES_COMMAND_OK) {
      rows.push_back({std::string("error: ") + PQerrorMessage(c)});
    }
    PQclear(r);
    PQfinish(c);
    return rows;
  }

 private:
  // Whether the script succeeded; its output goes to standard error when it did not.
  bool Script(const char* action) const {
    const std::string command = std::string(VANTREL_SOURCE_DIR) +
                                "/scripts/postgres-test-server.sh " + action + " " + dir_ + " 2>&1";
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return false;
    std::string out;
    std::array<char, 512> buffer{};
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe) != nullptr)
      out += buffer.data();
    if (::pclose(pipe) == 0) return true;
    std::fprintf(stderr, "postgres-test-server.sh %s: %s\n", action, out.c_str());
    return false;
  }

  std::string dir_;
  bool started_ = false;  // by the constructor
  bool running_ = false;
  int databases_ = 0;
};

}  // namespace vantrel::testing

// Skips the test where PostgreSQL is not installed; in CI a server that does not start fails.
#define VANTREL_NEED_POSTGRES(server)                                          \
  do {                                                                         \
    if (!(server).Running()) {                                                 \
      if (std::getenv("CI") != nullptr) FAIL() << "no PostgreSQL server";      \
      GTEST_SKIP() << "PostgreSQL is not installed (scripts/install-deps.sh)"; \
    }                                                                          \
  } while (false)
