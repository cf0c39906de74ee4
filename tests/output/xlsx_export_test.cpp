// The .xlsx export read back by LibreOffice, converted to UTF-8 CSV with the cells as shown
// (dates and times with their formats, numbers as numbers) and opened as the zip of XML it is (the
// sheets, the frozen header).

#include "vantrel/xlsx_exporter.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "output/fixed_trace.h"

namespace vantrel {
namespace {

using testing::FixedTrace;
using testing::RunShell;

// The fixed trace with an .xlsx writer.
struct WithXlsx : FixedTrace {
  WithXlsx() { xlsx = &exporter; }
  XlsxExporter exporter;
};

struct XlsxTrace : WithXlsx {
  XlsxTrace() { path = Export(1, "trace.xlsx"); }
  // A member of the workbook's zip, as text.
  std::string Member(const std::string& name) {
    return RunShell(
        "/usr/bin/python3 -c \"import sys, zipfile; "
        "sys.stdout.write(zipfile.ZipFile(sys.argv[1]).read(sys.argv[2]).decode())\" '" +
        path + "' " + name);
  }
  std::string path;
};

TEST(XlsxExport, LibreOfficeShowsDatesTimesNumbersAndTexts) {
  if (std::system("command -v soffice >/dev/null 2>&1") != 0) {
    if (std::getenv("CI") != nullptr) FAIL() << "LibreOffice is not installed";
    GTEST_SKIP() << "LibreOffice is not installed";
  }
  XlsxTrace t;
  ASSERT_TRUE(t.result.written) << t.result.outcome.text;
  const std::string out = t.dir.File("csv");
  const std::string log =
      RunShell("soffice -env:UserInstallation=file://" + t.dir.File("profile") +
               " --headless --convert-to "
               "'csv:Text - txt - csv (StarCalc):44,34,76,1,,1033,false,true,true'"
               " --outdir " +
               out + " " + t.path + " 2>&1");
  const std::vector<std::string> lines = testing::Lines(testing::ReadBytes(out + "/trace.csv"));
  const std::string dashes(16, '-');
  const std::vector<std::string> expected = {
      "PC Date,PC Time,PCD,Level,Stamp,\"State, now\",Note",
      "15/11/26,08:15:30,Run,12.5,14/11/26 23:59,Running,plain",
      "15/11/26,08:15:31,Run,-3.25,15/11/26 00:00,\"Stop, then \"\"wait\"\"\",caf\u00e9",
      "15/11/26,08:15:32,Run,0,31/12/99 12:00,Idle,line",
      "15/11/26,08:15:32,Miss 4,," + dashes + "," + dashes + "," + dashes,
  };
  std::vector<std::string> trimmed;
  for (const std::string& line : lines)
    trimmed.push_back(line.substr(0, line.find_last_not_of('\r') + 1));
  EXPECT_EQ(trimmed, expected) << log;
}

TEST(XlsxExport, TheWorkbookExplainsItself) {
  XlsxTrace t;
  const std::string workbook = t.Member("xl/workbook.xml");
  EXPECT_NE(workbook.find("name=\"Trace\""), std::string::npos) << workbook;
  EXPECT_NE(workbook.find("name=\"Description\""), std::string::npos);
  // The header row stays in view: a pane frozen below row 1.
  const std::string trace = t.Member("xl/worksheets/sheet1.xml");
  EXPECT_NE(trace.find("ySplit=\"1\""), std::string::npos);
  EXPECT_NE(trace.find("state=\"frozen\""), std::string::npos);
  const std::string description = t.Member("xl/worksheets/sheet2.xml");
  for (const char* text : {"Pump station", "PMP1", "Level", "Word", "2d", "Stamp", "Long"}) {
    EXPECT_NE(description.find(text), std::string::npos) << text;
  }
}

TEST(XlsxExport, AnUnwritableFileFails) {
  WithXlsx trace;
  trace.Export(1, "missing-folder/trace.xlsx");
  EXPECT_FALSE(trace.result.written);
  EXPECT_EQ(trace.result.outcome.title, "Vantrel exportation aborted !");
}

// A link in the target's place is never written through, whether it points to a file or
// to nothing yet, and no staging file is left behind.
TEST(XlsxExport, ALinkInTheTargetsPlaceIsNotWrittenThrough) {
  for (const bool dangling : {false, true}) {
    WithXlsx trace;
    const std::string victim = trace.dir.File("victim");
    std::ofstream(victim) << "keep";
    std::filesystem::create_symlink(dangling ? trace.dir.File("new") : victim,
                                    trace.dir.File("trace.xlsx"));
    trace.Export(1, "trace.xlsx");
    EXPECT_EQ(testing::ReadBytes(victim), "keep") << dangling;
    EXPECT_FALSE(std::filesystem::exists(trace.dir.File("new"))) << dangling;
    for (const auto& entry : std::filesystem::directory_iterator(trace.dir.Path())) {
      const std::string name = entry.path().filename().string();
      EXPECT_TRUE(name == "victim" || name == "trace.xlsx") << name;
    }
  }
}

TEST(XlsxExport, ANewWorkbookGetsTheUsualPermissionsAndAnOldOneKeepsItsOwn) {
  WithXlsx trace;
  const std::string path = trace.Export(1, "trace.xlsx");
  namespace fs = std::filesystem;
  const fs::perms mask = static_cast<fs::perms>(::umask(022));
  ::umask(static_cast<mode_t>(mask));
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0666) & ~mask);

  fs::permissions(path, fs::perms(0640));
  for (int row = 0; row < 2; ++row)
    trace.AddTextRow({"1", "15/11/26 00:00:01", "x", "y"});
  trace.Export(1, "trace.xlsx");
  EXPECT_TRUE(trace.result.written);
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
}

}  // namespace
}  // namespace vantrel
