#pragma once
// A record history in PostgreSQL, for a plant: many `vantrel run` processes, one per
// controller, write into one database that any SQL client reads. Rows are queued on the
// control's thread and written by a worker thread, one transaction per batch. While the
// server is away, the batch under way waits in memory and the rows after it in a bounded
// spool on disk and are written when it returns, in
// order and exactly once (each batch is numbered, and the database keeps the number of the
// last batch each writer committed, in the same transaction). The schema is in
// docs/history.md.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vantrel/row_sink.h"

namespace vantrel::history {

struct PostgresHistoryOptions {
  // postgresql://[user[:password]@][host][:port][/dbname][?param=value&...]
  std::string url;
  // What this writer records, for instance the controller's address; kept with the writer.
  std::string source;
  // Where the spool file is made (it has no name and goes with the process); "" is the
  // system's temporary directory.
  std::string spoolDirectory;
  uint64_t spoolLimitBytes = uint64_t{256} << 20;
  // How long closing waits for an absent server before the rows still waiting are given up.
  std::chrono::milliseconds closeWait{10000};
  // Called on the worker thread: the server went away or came back.
  std::function<void(std::string_view message)> notice;
  // Called on the worker thread when rows are lost (spool full, a batch the server refuses,
  // closing while the server is away): the rows lost this time and a message saying so.
  std::function<void(int64_t rows, std::string_view message)> rowsLost;
};

class PostgresHistory final : public RowSink {
 public:
  // True for texts that have the form of a PostgreSQL URL (postgresql:// or postgres://).
  static bool IsUrl(std::string_view text);
  // Connects, and creates the schema in a database that has none; nullptr with `error` set
  // when the URL does not parse, the server cannot be reached or refuses us, or the
  // database holds tables of our names that are not a Vantrel history, or a newer schema
  // (such a database is never altered).
  static std::unique_ptr<PostgresHistory> Open(PostgresHistoryOptions options, std::string& error);
  // Writes what is still queued (waiting at most closeWait for an absent server), then
  // closes; rows still waiting then are given up and reported. Rows added after Close are
  // not written. The destructor closes too.
  void Close();
  ~PostgresHistory() override;
  PostgresHistory(const PostgresHistory&) = delete;
  PostgresHistory& operator=(const PostgresHistory&) = delete;

  void DescriptionLoaded(const HistoryDescription& description) override;
  void RowAdded(const HistoryRow& row) override;

  // Waits until everything queued so far is written, or `timeout` has passed; true when
  // all of it is written.
  bool Flush(std::chrono::milliseconds timeout);
  // The first failure, empty while all went well.
  std::string LastError() const;
  // Rows lost so far.
  int64_t RowsLost() const;
  // Rows waiting in the spool now.
  size_t RowsSpooled() const;

 private:
  struct Worker;
  explicit PostgresHistory(std::unique_ptr<Worker> worker);
  std::unique_ptr<Worker> worker_;
};

}  // namespace vantrel::history
