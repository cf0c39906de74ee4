#pragma once
// `vantrel run`: one control driven as a host drives it, rows printed as they arrive.

#include <cstdint>
#include <optional>
#include <string>

#include "modbus_options.h"
#include "vantrel/history/record_history.h"

namespace vantrel::cli {

struct RunOptions {
  std::string controller = "sim";
  std::string propertiesFile;
  std::optional<int16_t> startRegister;
  std::optional<std::string> resourcePath;
  std::optional<std::string> projectPath;
  std::optional<std::string> userFile;
  std::optional<std::string> symbols;
  bool simulation = false;
  std::optional<int32_t> interval;
  std::optional<int32_t> maxRows;
  bool dateColumn = false;
  bool timeColumn = false;
  bool statusColumn = false;
  std::optional<std::string> exportFile;
  std::optional<int16_t> indexFile;
  bool autoExport = false;
  bool exportOnExit = false;
  std::optional<std::string> exportFormat;  // biff2, xlsx or csv
  std::optional<std::string> historyFile;   // a SQLite file or a PostgreSQL URL
  history::RecordHistorySettings history;   // the spool of a PostgreSQL history
  int64_t records = 0;                      // stop after this many rows; 0 runs on
  double durationSeconds = 0;               // stop after this long; 0 runs on
  // The embedded controller's program file and how often it writes a record (default: the
  // program's own interval).
  std::optional<std::string> programFile;
  std::optional<int32_t> recordIntervalMs;
  ModbusOptions modbus;
  std::string eventsFile;
  bool yes = false;
  std::optional<std::string> choose;
};

// Returns the process exit status: 0 after a normal stop, 1 when the control reported an
// error that stopped acquisition.
int Run(const RunOptions& options);

}  // namespace vantrel::cli
