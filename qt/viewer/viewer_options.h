#pragma once
// The viewer's command line: the same controller and property choices as `vantrel run`,
// and the screenshot options for documentation and tests.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::viewer {

struct ViewerOptions {
  std::string controller = "sim";
  std::optional<std::string> programFile;
  std::optional<int32_t> recordIntervalMs;
  std::string propertiesFile;
  std::optional<int16_t> startRegister;
  std::optional<std::string> resourcePath;
  std::optional<std::string> projectPath;
  std::optional<std::string> userFile;
  std::optional<std::string> symbols;
  bool simulation = false;
  std::optional<int32_t> interval;
  std::optional<int32_t> maxRows;
  std::optional<int32_t> maxGraph;
  bool dateColumn = false;
  bool timeColumn = false;
  bool statusColumn = false;
  std::optional<std::string> exportFile;
  std::optional<int16_t> indexFile;
  bool autoExport = false;
  std::optional<std::string> exportFormat;  // biff2, xlsx or csv
  std::optional<std::string> historyFile;
  // Modbus TCP mapping, as `vantrel run` takes it.
  int unit = 1;
  std::string wordOrder = "hi-lo";
  std::vector<std::string> dataBlocks;
  int32_t registerOffset = 0;

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
