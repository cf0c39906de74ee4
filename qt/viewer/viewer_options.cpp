#include "viewer_options.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace vantrel::viewer {

ParseOutcome ParseViewerOptions(int argc, char** argv, ViewerOptions& o) {
  CLI::App app{"Vantrel viewer: a controller's trace in a window", "vantrel-viewer"};
  app.add_option("--controller", o.controller,
                 "sim (the embedded virtual controller, default) or modbus://HOST:PORT");
  app.add_option("--program", o.programFile, "Trace program of the virtual controller (INI)");
  app.add_option("--record-interval", o.recordIntervalMs,
                 "Milliseconds between two records of the virtual controller")
      ->check(CLI::Range(1, 3600000));
  app.add_option("--properties", o.propertiesFile,
                 "Property file of the control (Name=Value lines), read and saved there "
                 "instead of the user's settings");
  app.add_option("--start-register", o.startRegister, "Register holding the buffer pointer");
  app.add_option("--resource-path", o.resourcePath,
                 "Directories searched for description files, separated by commas");
  app.add_option("--project-path", o.projectPath, "Project directory");
  app.add_option("--user-file", o.userFile, "User buffer file (.vtlr)");
  app.add_option("--symbols", o.symbols, "PG5 symbol file");
  app.add_flag("--simulation", o.simulation, "Simulate the buffer of the user file");
  app.add_option("--interval", o.interval, "Polling period in milliseconds")
      ->check(CLI::Range(1, 3600000));
  app.add_option("--max-rows", o.maxRows, "Rows kept in the table")->check(CLI::Range(1, 1 << 30));
  app.add_option("--max-graph", o.maxGraph, "Points of the graph (at least 20)");
  app.add_flag("--date-col", o.dateColumn, "Show the PC date column");
  app.add_flag("--time-col", o.timeColumn, "Show the PC time column");
  app.add_flag("--status-col", o.statusColumn, "Show the controller status column");
  app.add_option("--export", o.exportFile, "Export file");
  app.add_option("--index-file", o.indexFile,
                 "Export file naming: 0 fixed, 1 time-stamped, 2 indexed by the buffer");
  app.add_flag("--auto-export", o.autoExport, "Export whenever the table is full");
  app.add_option("--export-format", o.exportFormat,
                 "Export file format: biff2 (Excel 2.x, the default), xlsx or csv")
      ->check(CLI::IsMember({"biff2", "xlsx", "csv"}));
  app.add_option("--unit", o.unit, "Modbus unit (slave) id")->check(CLI::Range(0, 247));
  app.add_option("--word-order", o.wordOrder,
                 "Which 16-bit half of a 32-bit register comes first: hi-lo or lo-hi")
      ->check(CLI::IsMember({"hi-lo", "lo-hi"}));
  app.add_option("--db-map", o.dataBlocks,
                 "Data block d starts at holding register ADDR: d=ADDR (repeatable)");
  app.add_option("--register-offset", o.registerOffset,
                 "Holding register of controller register 0 (register n is at offset + 2n)")
      ->check(CLI::Range(0, 65535));
  app.add_option("--history", o.historyFile,
                 "Keep every row in a record history: a SQLite file (created if missing) or a "
                 "PostgreSQL database (postgresql://...)");
  app.add_option("--screenshot", o.screenshot,
                 "Render the window to this PNG file after --after-records rows, then exit");
  app.add_option("--after-records", o.afterRecords, "Rows shown before the screenshot")
      ->check(CLI::Range(1, 100000));
  app.add_option("--graph-columns", o.graphColumns,
                 "Columns (captions) drawn in the graph of the screenshot")
      ->delimiter(',');
  app.add_flag("--show-graph", o.showGraph,
               "Show the graph in the screenshot (all data columns unless --graph-columns)");
  app.add_option("--size", o.size, "Window size in pixels, e.g. 1200x800");

  ParseOutcome outcome;
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream err;
    outcome.exitCode = app.exit(error, out, err);
    outcome.message = out.str() + err.str();
    return outcome;
  }
  if (o.size && !ParseSize(*o.size)) {
    outcome.exitCode = 2;
    outcome.message = "--size: expected WIDTHxHEIGHT, e.g. 1200x800\n";
  }
  return outcome;
}

std::optional<std::pair<int, int>> ParseSize(const std::string& text) {
  int width = 0;
  int height = 0;
  char separator = 0;
  std::istringstream in(text);
  if (!(in >> width >> separator >> height) || (separator != 'x' && separator != 'X') ||
      !in.eof() || width < 100 || height < 100 || width > 10000 || height > 10000) {
    return std::nullopt;
  }
  return std::make_pair(width, height);
}

}  // namespace vantrel::viewer
