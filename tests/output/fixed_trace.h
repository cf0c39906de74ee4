#pragma once
// A fixed decoded trace for the export tests, and ways to read what an export wrote.

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "output/export_naming.h"
#include "support/temp_dir.h"
#include "support/trace_table.h"

namespace vantrel::testing {

inline std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A fixed trace: stamps, numbers with the decimal comma, a controller date and time column,
// texts with a comma, quotes and a Windows-1252 letter, and a Miss row.
struct FixedTrace : TraceTable {
  FixedTrace() {
    Define(1, 4, 0, 0, "Level", "2d", 900);
    Define(2, 5, 1, 0, "Stamp", "t", 1700);
    Define(3, 3, 2, 0, "State, now", "s", 1100);
    Define(4, 5, 3, 0, "Note", "a", 1000);
    Build();
    decimalSeparator = ',';
    shown = {true, true, true};  // exported, though the table was built without them
    status = "Run";
    const char* texts[][5] = {
        {"08:15:30", " 12,50", "14/11/26 23:59:58", "Running", "plain"},
        {"08:15:31", "-3,25", "15/11/26 00:00:01", "Stop, then \"wait\"", "caf\xE9"},
        {"08:15:32", " 0", "31/12/99 12:00:00", "Idle", "line"},
    };
    for (const auto& row : texts) {
      StampAt(row[0]);
      AddTextRow({row[1], row[2], row[3], row[4]});
    }
    AddMissRow(4);
    description.Title = "Pump station";
    description.HeaderKeyText = "PMP1";
    description.DescVersion = 3;
  }
  // Exports the table to `name` in the test's directory, named by `indexFile` as the control
  // names its exports, and returns the configured file's path.
  std::string Export(int16_t format, const std::string& name) {
    const DateTime now{2026, 11, 15, 8, 15, 32, 0};
    const std::string target = ExportTargetName(dir.File(name), indexFile, now, exportIndex);
    result = TraceTable::Export(format, target, xlsx, indexFile == 0);
    return dir.File(name);
  }
  int16_t indexFile = 0;
  int32_t exportIndex = 0;
  TableExporter* xlsx = nullptr;
  ExportResult result;
  TempDir dir;
};

inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = text.find('\n', start);
    lines.push_back(text.substr(start, end - start));
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return lines;
}

// What a shell command printed; `status` receives its exit status.
inline std::string RunShell(const std::string& command, int* status = nullptr) {
  std::string out;
  int result = -1;
  if (FILE* pipe = ::popen(command.c_str(), "r")) {
    char buffer[4096];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
      out.append(buffer, n);
    result = ::pclose(pipe);
  }
  if (status != nullptr) *status = result;
  return out;
}

inline std::string Python(const std::string& script, const std::string& file) {
  const std::string command =
      "/usr/bin/python3 " VANTREL_SOURCE_DIR "/tests/output/" + script + " '" + file + "'";
  int status = 0;
  const std::string out = RunShell(command, &status);
  return status == 0 ? out : "(" + command + " failed)\n" + out;
}

}  // namespace vantrel::testing
