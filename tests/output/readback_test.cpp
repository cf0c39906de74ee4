// An exported trace read back by independent readers: xlrd checks every record, cell type
// and format; LibreOffice converts the file to CSV, which must show what the table showed.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "output/fixed_trace.h"

namespace vantrel {
namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::stringstream in(text);
  std::string part;
  while (std::getline(in, part, separator))
    parts.push_back(part);
  if (!text.empty() && text.back() == separator) parts.emplace_back();
  return parts;
}

// A decoded trace with every kind of cell: stamps, numbers, a date and time column, texts,
// and a text column whose third row is too long for the format.
struct DecodedTrace : testing::TraceTable {
  DecodedTrace() {
    Define(1, 4, 0, 0, "Level", "d", 900);
    Define(2, 5, 1, 0, "Stamp", "t", 1700);
    Define(3, 3, 2, 0, "State", "s", 1100);
    Define(4, 5, 3, 0, "Note", "a", 1000);
    Build();
    shown.date = true;
    shown.time = true;
    status = "Run";
    const char* texts[][4] = {{"08:15:30", " 12", "14/11/26 23:59:58", "Running"},
                              {"08:15:31", "-3.25", "15/11/26 00:00:01", "Stopping"},
                              {"08:15:32", "1E3", "31/12/99 12:00:00", "Idle"}};
    int i = 0;
    for (const auto& row : texts) {
      StampAt(row[0]);
      const std::string note = i == 2 ? std::string(300, 'n') : "note" + std::to_string(i);
      AddTextRow({row[1], row[2], row[3], note});
      ++i;
    }
    Export(kExportExcel2, dir.File("trace.xls"));
  }
  testing::TempDir dir;
};

TEST(ReadBack, XlrdSeesEveryCellWithItsTypeAndFormat) {
  DecodedTrace t;
  int status = 0;
  const std::string out =
      testing::RunShell("/usr/bin/python3 " VANTREL_SOURCE_DIR "/tests/output/read_xls.py " +
                            t.dir.File("trace.xls") + " 2>&1",
                        &status);
  ASSERT_EQ(status, 0) << out;
  std::map<std::string, std::vector<std::string>> cells;
  for (const std::string& line : Split(out, '\n')) {
    if (line.empty()) continue;
    const auto f = Split(line, '\t');
    ASSERT_EQ(f.size(), 6u) << line;
    cells[f[0] + "," + f[1]] = {f[2], f[3], f[4], f[5]};
  }
  using V = std::vector<std::string>;
  EXPECT_EQ(cells["1,1"], (V{"text", "PC Date", "0", "General"}));
  EXPECT_EQ(cells["1,6"], (V{"text", "Note", "0", "General"}));
  EXPECT_EQ(cells["2,1"], (V{"date", "46341.0", "12", "dd/mm/yy"}));
  ASSERT_EQ(cells["3,2"].size(), 4u);
  EXPECT_EQ(cells["3,2"].at(0), "date");
  EXPECT_EQ(cells["3,2"].at(3), "hh:mm:ss");
  EXPECT_NEAR(std::stod(cells["3,2"].at(1)), 29731.0 / 86400, 1e-12);
  EXPECT_EQ(cells["2,3"], (V{"number", "12.0", "0", "General"}));
  EXPECT_EQ(cells["3,3"], (V{"number", "-3.25", "0", "General"}));
  EXPECT_EQ(cells["4,3"], (V{"number", "1000.0", "0", "General"}));
  EXPECT_EQ(cells["2,4"].at(0), "date");
  EXPECT_EQ(cells["2,4"].at(3), "dd/mm/yy\\ hh:mm");
  EXPECT_NEAR(std::stod(cells["4,4"].at(1)), 36525.5, 1e-9);
  EXPECT_EQ(cells["3,5"], (V{"text", "Stopping", "0", "General"}));
  EXPECT_EQ(cells.count("4,6"), 0u) << "the over-long text is refused alone";
  EXPECT_EQ(cells.size(), 4u * 6u - 1u);
}

TEST(ReadBack, LibreOfficeShowsWhatTheTableShowed) {
  if (std::system("command -v soffice >/dev/null 2>&1") != 0) {
    if (std::getenv("CI") != nullptr) FAIL() << "LibreOffice is not installed";
    GTEST_SKIP() << "LibreOffice is not installed";
  }
  DecodedTrace t;
  const std::string out = t.dir.File("csv");
  // A profile of its own, so that a running office or a concurrent test does not interfere.
  const std::string log = testing::RunShell(
      "soffice -env:UserInstallation=file://" + t.dir.File("profile") +
      " --headless --convert-to csv --outdir " + out + " " + t.dir.File("trace.xls") + " 2>&1");
  std::ifstream csv(out + "/trace.csv");
  ASSERT_TRUE(csv.good()) << log;
  std::vector<std::string> lines;
  for (std::string line; std::getline(csv, line);)
    lines.push_back(line.substr(0, line.find_last_not_of('\r') + 1));
  ASSERT_EQ(lines.size(), 4u) << log;
  EXPECT_EQ(lines[0], "PC Date,PC Time,Level,Stamp,State,Note");
  const auto second = Split(lines[2], ',');
  ASSERT_EQ(second.size(), 6u) << lines[2];
  EXPECT_EQ(second[0], "46341");
  EXPECT_NEAR(std::stod(second[1]), 29731.0 / 86400, 1e-6);
  EXPECT_EQ(second[2], "-3.25");
  EXPECT_NEAR(std::stod(second[3]), 46341.0 + 1.0 / 86400, 1e-6);
  EXPECT_EQ(second[4], "Stopping");
  EXPECT_EQ(second[5], "note1");
  const auto third = Split(lines[3], ',');
  ASSERT_EQ(third.size(), 6u) << lines[3];
  EXPECT_EQ(third[2], "1000");
  EXPECT_EQ(third[5], "") << "the over-long text is refused alone";
}

}  // namespace
}  // namespace vantrel
