#pragma once
// A record history in SQLite: every row the control adds, kept for good, in a file that any
// SQL client reads. Rows are queued on the control's thread and written by a worker thread
// in batches, one transaction per batch (whatever came within 100 ms), in WAL mode, so the
// control never waits for the disk. The schema is in docs/history.md.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vantrel/row_sink.h"

namespace vantrel::history {

class SqliteHistory final : public RowSink {
 public:
  // Opens the history at `path`, creating it when it does not exist; nullptr with `error`
  // set when the file cannot be opened or written, or holds a schema that is not ours or is
  // newer than ours (such a file is never altered). A write waits up to `busyTimeoutMs` for
  // another program's lock on the file; a batch still locked out then is lost and reported.
  static std::unique_ptr<SqliteHistory> Open(const std::string& path, std::string& error,
                                             int busyTimeoutMs = 5000);
  // Writes what is still queued, then closes.
  ~SqliteHistory() override;
  SqliteHistory(const SqliteHistory&) = delete;
  SqliteHistory& operator=(const SqliteHistory&) = delete;

  void DescriptionLoaded(const HistoryDescription& description) override;
  void RowAdded(const HistoryRow& row) override;

  // Waits until everything queued so far is written.
  void Flush();
  // The first write failure, empty while all went well.
  std::string LastError() const;
  // Called on the writer's thread when a batch cannot be written (a full disk, a file that
  // became unwritable): the rows lost and a message saying so.
  void OnRowsLost(std::function<void(int64_t rows, std::string_view message)> report);

 private:
  struct Worker;
  explicit SqliteHistory(std::unique_ptr<Worker> worker);
  std::unique_ptr<Worker> worker_;
};

// The schema version this build writes.
inline constexpr int kHistorySchemaVersion = 2;

}  // namespace vantrel::history
