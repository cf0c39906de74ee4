#pragma once
// The viewer's command line: the same controller and property choices as `vantrel run`,
// and the screenshot options for documentation and tests.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host_options.h"

namespace vantrel::viewer {

struct ViewerOptions : hosts::HostOptions {
  std::optional<int32_t> maxGraph;

  // Render the window into this PNG file once `afterRecords` rows are shown, then exit.
  std::string screenshot;
  int afterRecords = 30;
  // Columns (by caption) drawn in the graph of the shot; naming any shows the graph.
  std::vector<std::string> graphColumns;
  bool showGraph = false;
  // Window size in pixels, "WIDTHxHEIGHT"; by default a screenshot fits its rows.
  std::optional<std::string> size;
};

struct ParseOutcome {
  // Set when the program should end at once (help, or a wrong command line).
  std::optional<int> exitCode;
  std::string message;
};

// `argv` as QApplication left it (its own options removed).
ParseOutcome ParseViewerOptions(int argc, char** argv, ViewerOptions& options);

// "1200x800" as width and height; nothing when the text is not of that form.
std::optional<std::pair<int, int>> ParseSize(const std::string& text);

}  // namespace vantrel::viewer
