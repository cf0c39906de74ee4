#pragma once
// The Modbus TCP options shared by `vantrel run` and `vantrel controller`: how controller
// registers and data blocks map onto holding registers.

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vantrel::cli {

struct ModbusOptions {
  int unit = 1;
  std::string wordOrder = "hi-lo";
  std::vector<std::string> dataBlocks;  // "d=ADDR"
  int32_t registerOffset = 0;
};

void AddModbusOptions(CLI::App& command, ModbusOptions& options);

}  // namespace vantrel::cli
