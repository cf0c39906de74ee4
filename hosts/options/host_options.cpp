#include "host_options.h"

#include <CLI/CLI.hpp>

#include "byte_size.h"
#include "vantrel/control.h"

namespace vantrel::hosts {

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

void AddHostOptions(CLI::App& command, HostOptions& o) {
  command
      .add_option("--controller", o.controller,
                  "Controller to read: 'sim' (the embedded virtual controller) or "
                  "modbus://HOST:PORT")
      ->capture_default_str();
  command.add_option("--program", o.programFile,
                     "The embedded controller's trace program (INI file)");
  command
      .add_option("--record-interval", o.recordIntervalMs,
                  "Milliseconds between records of the embedded controller (default: the "
                  "program's)")
      ->check(CLI::Range(1, 3'600'000));
  AddModbusOptions(command, o.modbus);
  command.add_option("--properties", o.propertiesFile,
                     "Load the control's settings from this Name=Value file");
  command.add_option("--start-register", o.startRegister,
                     "Register holding the trace buffer pointer");
  command.add_option("--resource-path", o.resourcePath,
                     "Comma-separated directories searched for description files");
  command.add_option("--project-path", o.projectPath, "Project directory");
  command.add_option("--user-file", o.userFile, "User buffer file (.vtlr)");
  command.add_option("--symbols", o.symbols, "PG5 symbol file");
  command.add_flag("--simulation", o.simulation, "Simulate the buffer of the user file");
  command.add_option("--interval", o.interval, "Polling period in milliseconds")
      ->check(CLI::Range(1, 3'600'000));
  command.add_option("--max-rows", o.maxRows, "Rows kept in the table")
      ->check(CLI::Range(1, 1 << 30));
  command.add_flag("--date-col", o.dateColumn, "Show the PC date column");
  command.add_flag("--time-col", o.timeColumn, "Show the PC time column");
  command.add_flag("--status-col", o.statusColumn, "Show the controller status column");
  command.add_option("--export", o.exportFile, "Export file");
  command
      .add_option("--index-file", o.indexFile,
                  "Export file naming: 0 fixed, 1 time-stamped, 2 indexed")
      ->check(CLI::Range(0, 2));
  command.add_flag("--auto-export", o.autoExport, "Export whenever the table is full");
  command
      .add_option("--export-format", o.exportFormat,
                  "Export file format: biff2 (Excel 2.x, the default), xlsx or csv")
      ->check(CLI::IsMember({"biff2", "xlsx", "csv"}));
  command.add_option("--history", o.historyFile,
                     "Keep every row in a record history: a SQLite file (created if "
                     "missing) or a PostgreSQL database (postgresql://...)");
  command.add_option("--history-spool", o.historySpool,
                     "Where rows wait while the PostgreSQL server is away (default: the "
                     "temporary directory)");
  command
      .add_option_function<std::string>(
          "--history-spool-limit",
          [&o](const std::string& text) {
            const auto bytes = ParseByteSize(text);
            if (!bytes || *bytes == 0) throw CLI::ValidationError("--history-spool-limit", text);
            o.historySpoolLimit = *bytes;
          },
          "The most the spool holds, in bytes, or with K, M or G (default 256M); rows beyond it "
          "are lost and reported")
      ->type_name("SIZE");
}

void ApplyControlOptions(Control& control, const HostOptions& o) {
  if (o.resourcePath) control.SetResourcePath(*o.resourcePath);
  if (o.projectPath) control.SetProjectPath(*o.projectPath);
  if (o.userFile) control.SetUserFile(*o.userFile);
  if (o.symbols) control.SetSymbFile(*o.symbols);
  if (o.interval) control.SetInterval(*o.interval);
  if (o.maxRows) control.SetMaxRows(*o.maxRows);
  if (o.dateColumn) control.SetDateStampCol(true);
  if (o.timeColumn) control.SetTimeStampCol(true);
  if (o.statusColumn) control.SetPCDStatusCol(true);
  if (o.exportFile) control.SetExportFile(*o.exportFile);
  if (o.indexFile) control.SetIndexFile(*o.indexFile);
  if (o.autoExport) control.SetAutoExport(true);
  if (o.exportFormat) {
    control.SetExportFormat(*o.exportFormat == "xlsx" ? 1 : *o.exportFormat == "csv" ? 2 : 0);
  }
}

}  // namespace vantrel::hosts
