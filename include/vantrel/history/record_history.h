#pragma once
// A host's record history, whichever kind its setting names: a SQLite file, or a PostgreSQL
// server given by URL. It attaches itself to the control, and rows it loses are reported on
// the control's own thread as a ModulError (kHistoryErrType) as well as to the host.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vantrel/history/history_reader.h"

namespace vantrel {
class Control;
}

namespace vantrel::history {

struct RecordHistorySettings {
  std::string target;  // a file, or postgresql://...
  std::string source;  // what the host reads (the controller), kept by a server history
  std::string spoolDirectory;
  uint64_t spoolLimitBytes = uint64_t{256} << 20;
  // Called on a writer's thread: the server went away or came back, rows were lost.
  std::function<void(std::string_view message)> notice;
  // Runs a function on the control's thread (the host's event loop).
  std::function<void(std::function<void()>)> post;
};

class RecordHistory {
 public:
  // Opens the history and attaches it to `control`; nullptr with `error` set when it cannot
  // be used.
  static std::unique_ptr<RecordHistory> Open(RecordHistorySettings settings, Control& control,
                                             std::string& error);
  virtual ~RecordHistory() = default;
  // Detaches from the control and writes what is queued (a server history waits for an
  // absent server only a while); the first failure, or "".
  virtual std::string Close() = 0;
};

// Whether a history setting names a PostgreSQL server rather than a file.
bool IsServerHistory(std::string_view target);

// Opens a history for reading: the SQLite file, or the PostgreSQL database, that `target`
// names; nullptr with `error` set when it cannot be read as a Vantrel history.
std::unique_ptr<HistoryReader> OpenHistoryReader(const std::string& target, std::string& error);

}  // namespace vantrel::history
