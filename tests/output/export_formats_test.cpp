// The export formats beside each other on one decoded trace: the Excel 2.x file stays byte
// for byte what it was (a reference file is kept), and the CSV file is read back with
// Python's csv module and compared with the table.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "decoding/row_bookkeeping.h"
#include "output/output_steps.h"
#include "support/module_fixture.h"
#include "support/temp_dir.h"
#include "vantrel/encoding.h"

namespace vantrel {
namespace {

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A fixed trace: stamps, numbers with the decimal comma, a controller date and time column,
// texts with a comma, quotes and a Windows-1252 letter, and a Miss row.
struct FixedTrace : testing::ModuleFixture {
  FixedTrace() {
    Define(1, 4, 0, 0, "Level", "2d", 900);
    Define(2, 5, 1, 0, "Stamp", "t", 1700);
    Define(3, 3, 2, 0, "State, now", "s", 1100);
    Define(4, 5, 3, 0, "Note", "a", 1000);
    Build();
    m.decimalSeparator = ',';
    m.props.DateStampCol = true;
    m.props.TimeStampCol = true;
    m.props.PCDStatusCol = true;
    m.PCDStatusText = "Run";
    m.StatusDate = "15/11/26";
    const char* rows[][5] = {
        {"08:15:30", " 12,50", "14/11/26 23:59:58", "Running", "plain"},
        {"08:15:31", "-3,25", "15/11/26 00:00:01", "Stop, then \"wait\"", "caf\xE9"},
        {"08:15:32", " 0", "31/12/99 12:00:00", "Idle", "line"},
    };
    for (const auto& row : rows) {
      m.StatusTime = row[0];
      AddRecordRow(m, std::string("\t") + row[1] + "\t" + row[2] + "\t" + row[3] + "\t" + row[4],
                   "", "");
    }
    AddMissRow(m, 4);
  }
  std::string Export(int16_t format, const std::string& name) {
    m.props.ExportFormat = format;
    m.props.ExportFile = dir.File(name);
    ExportFromButton(m);
    return m.props.ExportFile;
  }
  testing::TempDir dir;
};

TEST(ExportFormats, TheExcel2FileIsByteForByteTheReference) {
  FixedTrace trace;
  const std::string path = trace.Export(0, "trace.xls");
  const std::string reference = VANTREL_SOURCE_DIR "/tests/output/reference/fixed_trace.xls";
  if (std::getenv("VANTREL_WRITE_REFERENCE") != nullptr) {
    std::ofstream(reference, std::ios::binary) << ReadBytes(path);
  }
  const std::string expected = ReadBytes(reference);
  ASSERT_FALSE(expected.empty()) << "missing " << reference;
  EXPECT_EQ(ReadBytes(path), expected);
}

std::vector<std::string> Lines(const std::string& text) {
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

std::string Python(const std::string& script, const std::string& file) {
  const std::string command =
      "/usr/bin/python3 " VANTREL_SOURCE_DIR "/tests/output/" + script + " '" + file + "'";
  std::string out;
  if (FILE* pipe = ::popen(command.c_str(), "r")) {
    char buffer[4096];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
      out.append(buffer, n);
    if (::pclose(pipe) != 0) out = "(" + command + " failed)\n" + out;
  }
  return out;
}

TEST(ExportFormats, CsvReadsBackAsTheTableWithIsoDatesAndDecimalPoints) {
  FixedTrace trace;
  const std::string path = trace.Export(2, "trace.csv");
  EXPECT_TRUE(trace.prompts.Messages().empty());
  EXPECT_EQ(trace.m.grid.DataRowCount(), 0) << "the table is emptied after the export";
  const std::string bytes = ReadBytes(path);
  ASSERT_GE(bytes.size(), 3u);
  EXPECT_EQ(bytes.substr(0, 3), "\xEF\xBB\xBF");
  EXPECT_NE(bytes.find("\r\n"), std::string::npos);
  const std::vector<std::string> rows = Lines(Python("read_csv.py", path));
  const std::string dashes(16, '-');
  const std::vector<std::string> expected = {
      "PC Date\tPC Time\tPCD\tLevel\tStamp\tState, now\tNote",
      "2026-11-15\t08:15:30\tRun\t12.5\t2026-11-14 23:59:58\tRunning\tplain",
      "2026-11-15\t08:15:31\tRun\t-3.25\t2026-11-15 00:00:01\tStop, then \"wait\"\tcaf\u00e9",
      "2026-11-15\t08:15:32\tRun\t0\t1999-12-31 12:00:00\tIdle\tline",
      "2026-11-15\t08:15:32\tMiss 4\t\t" + dashes + "\t" + dashes + "\t" + dashes,
  };
  EXPECT_EQ(rows, expected);
}

TEST(ExportFormats, DefaultNamesFollowTheFormat) {
  for (const auto& [format, name] : {std::pair<int16_t, const char*>{0, "Vantrel.xls"},
                                     {1, "Vantrel.xlsx"},
                                     {2, "Vantrel.csv"}}) {
    FixedTrace trace;
    trace.m.services.currentDirectory = trace.dir.Path().string();
    trace.m.props.ExportFormat = format;
    trace.m.CommandedExport = true;  // with no export file, a commanded export uses the default
    ExportFromButton(trace.m);
    EXPECT_EQ(trace.m.props.ExportFile, trace.dir.Path().string() + "/" + name);
  }
}

TEST(ExportFormats, XlsxWithoutAWriterFailsAndKeepsTheTable) {
  FixedTrace trace;
  trace.m.CommandedExport = true;
  const std::string path = trace.Export(1, "trace.xlsx");
  EXPECT_EQ(trace.m.grid.DataRowCount(), 4);
  EXPECT_FALSE(std::ifstream(path).good()) << "no file is left behind";
  ASSERT_EQ(trace.prompts.Messages().size(), 1u);
  EXPECT_EQ(trace.prompts.Messages()[0].text,
            "ExportExcelFile Error XLSX export is not available in this host");
}

TEST(ExportFormats, AnUnwritableCsvFailsAndKeepsTheTable) {
  FixedTrace trace;
  trace.m.CommandedExport = true;
  trace.m.props.ExportFormat = 2;
  trace.m.props.ExportFile = trace.dir.File("missing-folder/trace.csv");
  ExportFromButton(trace.m);
  EXPECT_EQ(trace.m.grid.DataRowCount(), 4);
  ASSERT_EQ(trace.prompts.Messages().size(), 1u);
  EXPECT_EQ(trace.prompts.Messages()[0].title, "Vantrel exportation aborted !");
}

}  // namespace
}  // namespace vantrel
