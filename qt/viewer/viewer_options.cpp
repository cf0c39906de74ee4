#include "viewer_options.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace vantrel::viewer {

ParseOutcome ParseViewerOptions(int argc, char** argv, ViewerOptions& o) {
  CLI::App app{"Vantrel viewer: a controller's trace in a window", "vantrel-viewer"};
  hosts::AddHostOptions(app, o);
  // The viewer also saves the settings there when they change.
  app.get_option("--properties")
      ->description(
          "Property file of the control (Name=Value lines), read and saved there instead of "
          "the user's settings");
  app.add_option("--max-graph", o.maxGraph, "Points of the graph (at least 20)");
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
    // Help ends with 0; a wrong command line with 2, as `vantrel` ends.
    outcome.exitCode = app.exit(error, out, err) == 0 ? 0 : 2;
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
