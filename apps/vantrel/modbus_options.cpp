#include "modbus_options.h"

#include <CLI/CLI.hpp>

namespace vantrel::cli {

void AddModbusOptions(CLI::App& command, ModbusOptions& o) {
  command.add_option("--unit", o.unit, "Modbus unit (slave) id")
      ->check(CLI::Range(0, 247))
      ->capture_default_str();
  command
      .add_option("--word-order", o.wordOrder,
                  "Which 16-bit half of a 32-bit register comes first: hi-lo or lo-hi")
      ->check(CLI::IsMember({"hi-lo", "lo-hi"}))
      ->capture_default_str();
  command.add_option("--db-map", o.dataBlocks,
                     "Data block d starts at holding register ADDR: d=ADDR (repeatable)");
  command
      .add_option("--register-offset", o.registerOffset,
                  "Holding register of controller register 0 (register n is at offset + 2n)")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
}

}  // namespace vantrel::cli
