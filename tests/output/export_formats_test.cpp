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

#include "output/fixed_trace.h"

namespace vantrel {
namespace {

using testing::FixedTrace;
using testing::Lines;
using testing::Python;
using testing::ReadBytes;

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

TEST(ExportFormats, CsvReadsBackAsTheTableWithIsoDatesAndDecimalPoints) {
  FixedTrace trace;
  const std::string path = trace.Export(2, "trace.csv");
  EXPECT_TRUE(trace.result.written);
  EXPECT_TRUE(trace.result.messages.empty());
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

TEST(ExportFormats, FailuresLeaveNoFileAndSayWhy) {
  FixedTrace trace;
  const std::string xlsx = trace.Export(1, "trace.xlsx");
  EXPECT_TRUE(trace.result.failed);
  EXPECT_FALSE(std::ifstream(xlsx).good()) << "no file is left behind";
  EXPECT_EQ(trace.result.outcome.text,
            "ExportExcelFile Error XLSX export is not available in this host");
  trace.Export(2, "missing-folder/trace.csv");
  EXPECT_TRUE(trace.result.failed);
  EXPECT_FALSE(trace.result.written);
  EXPECT_EQ(trace.result.outcome.title, "Vantrel exportation aborted !");
}

}  // namespace
}  // namespace vantrel
