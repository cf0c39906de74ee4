#pragma once
// The record history of `vantrel run`: a SQLite file, or a PostgreSQL server named by URL.
// Rows it loses are reported on standard error and as a ModulError of the control.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vantrel/control.h"
#include "vantrel/poll_event_loop.h"

namespace vantrel::cli {

struct HistorySettings {
  std::string target;  // a file, or postgresql://...
  std::string source;  // what the run reads (the controller), kept by a server history
  std::string spoolDirectory;
  uint64_t spoolLimitBytes = uint64_t{256} << 20;
};

class RunHistory {
 public:
  // Opens the history and attaches it to the control; nullptr with `error` set when it
  // cannot be used.
  static std::unique_ptr<RunHistory> Open(const HistorySettings& settings, Control& control,
                                          PollEventLoop& loop, std::string& error);
  virtual ~RunHistory() = default;
  // Detaches from the control and writes what is queued; the first failure, or "".
  virtual std::string Close() = 0;
};

// "64M", "512K", "1G" or a number of bytes; nullopt for anything else.
std::optional<uint64_t> ParseByteSize(std::string_view text);

}  // namespace vantrel::cli
