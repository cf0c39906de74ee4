#pragma once
// `vantrel run`: one control driven as a host drives it, rows printed as they arrive.

#include <cstdint>
#include <optional>
#include <string>

#include "host_options.h"

namespace vantrel::cli {

struct RunOptions : hosts::HostOptions {
  bool exportOnExit = false;
  int64_t records = 0;         // stop after this many rows; 0 runs on
  double durationSeconds = 0;  // stop after this long; 0 runs on
  std::string eventsFile;
  bool yes = false;
  std::optional<std::string> choose;
};

// Returns the process exit status: 0 after a normal stop, 1 when the control reported an
// error that stopped acquisition.
int Run(const RunOptions& options);

}  // namespace vantrel::cli
