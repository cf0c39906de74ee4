#pragma once
// `vantrel controller`: the virtual controller served over Modbus TCP, steered by commands
// on standard input (see vantrel/hosts/program_commands.h).

#include <cstdint>
#include <optional>
#include <string>

#include "host_options.h"

namespace CLI {
class App;
}

namespace vantrel::cli {

struct ControllerOptions {
  std::string listen = "127.0.0.1:1502";
  std::optional<std::string> programFile;
  std::optional<int32_t> recordIntervalMs;
  double durationSeconds = 0;
  hosts::ModbusOptions modbus;
};

// Registers the subcommand and its options; returns it.
CLI::App* AddControllerCommand(CLI::App& app, ControllerOptions& options);

// Exit status: 0 after a normal stop, 2 on bad options or an address it cannot listen on.
int RunController(const ControllerOptions& options);

}  // namespace vantrel::cli
