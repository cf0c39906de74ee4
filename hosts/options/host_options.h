#pragma once
// What both programs (`vantrel run` and the viewer) take on their command lines: the
// controller and how Modbus maps onto it, and the control's properties. One declaration for
// both parsers, so that an option means the same and is checked the same in each.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vantrel {
class Control;
}

namespace vantrel::hosts {

// How controller registers and data blocks map onto Modbus holding registers.
struct ModbusOptions {
  int unit = 1;
  std::string wordOrder = "hi-lo";
  std::vector<std::string> dataBlocks;  // "d=ADDR"
  int32_t registerOffset = 0;
};

void AddModbusOptions(CLI::App& command, ModbusOptions& options);

struct HostOptions {
  std::string controller = "sim";  // "sim" or modbus://HOST:PORT
  // The embedded controller's program file and how often it writes a record (default: the
  // program's own interval).
  std::optional<std::string> programFile;
  std::optional<int32_t> recordIntervalMs;
  ModbusOptions modbus;
  std::string propertiesFile;

  // The control's properties; those not given keep the control's own (or saved) values.
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
  std::optional<std::string> exportFormat;  // biff2, xlsx or csv
  std::optional<std::string> historyFile;   // a SQLite file or a PostgreSQL URL
  // Where the rows of a PostgreSQL history wait while its server is away, and how much.
  std::optional<std::string> historySpool;
  std::optional<uint64_t> historySpoolLimit;
};

void AddHostOptions(CLI::App& command, HostOptions& options);

// Sets the properties given on the command line that mean the same to every host: the
// paths and files, polling, rows, stamp columns and export. The start register, the
// simulation and the history each host applies in its own way.
void ApplyControlOptions(Control& control, const HostOptions& options);

}  // namespace vantrel::hosts
