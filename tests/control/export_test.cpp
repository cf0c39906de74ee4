// The control's exports: from the button, the controller's command and a full table with
// AutoExport; what is shown for each, the table emptied only once the file was written, and
// the names the files get.

#include <gtest/gtest.h>

#include <filesystem>

#include "support/biff_reader.h"
#include "support/live_trace.h"

namespace vantrel {
namespace {

using testing::LiveTrace;
using testing::ReadBiffFile;
using Texts = std::vector<std::string>;

constexpr int32_t kCommandExport = 8;

// A number and a controller time stamp; a stamp of -1 shows "Invalid time", which the
// export cannot write as a date.
struct Trace : LiveTrace {
  Trace() : LiveTrace({"0,Long,0,x,900,Level,%d,0", "1,Long,0,x,1700,Stamp,%t,0"}, 2) {
    control->SetExportFile(dir.File("trace.xls"));
  }
};

Texts Headers(const std::string& path) {
  Texts out;
  const testing::BiffSheet sheet = ReadBiffFile(path);
  for (int c = 1; sheet.Cell(1, c) != nullptr; ++c)
    out.push_back(sheet.Cell(1, c)->text);
  return out;
}

TEST(ControlExport, TheButtonWritesTheShownColumnsAndEmptiesTheTable) {
  Trace f;
  f->ClickExportButton();
  EXPECT_TRUE(f.host.Named("NewExportFile").empty()) << "no data row, no export";
  f->SetDateStampCol(true);
  f.Add({{12, 1115235958}, {-3, 1116000001}});
  f->ClickExportButton();
  EXPECT_EQ(Headers(f.dir.File("trace.xls")), (Texts{"PC Date", "Level", "Stamp"}));
  EXPECT_EQ(f.host.Named("NewExportFile").size(), 1u);
  EXPECT_EQ(f.DataRows(), 0);
  EXPECT_EQ(f->GetSurface().rowCount.caption, "0");
  EXPECT_TRUE(f.prompts.Messages().empty());
  EXPECT_FALSE(f->GetSurface().busyCursor);
}

TEST(ControlExport, ColumnFailuresAreShownForTheControllersCommandOnly) {
  Trace f;
  f.Add({{1, -1}});
  f->ClickExportButton();
  EXPECT_TRUE(f.prompts.Messages().empty());
  EXPECT_EQ(f.DataRows(), 0);
  f.Add({{1, -1}});
  f.Command(kCommandExport);
  f.Poll();
  EXPECT_EQ(f.DataRows(), 0);
  Texts shown;
  for (const auto& m : f.prompts.Messages())
    shown.push_back(m.text);
  EXPECT_EQ(shown, (Texts{"WriteColumn 5 Error : Type mismatch",
                          "Successful export to file : " + f.dir.File("trace.xls")}));
  f->SetAutoExport(true);
  f.Add({{1, -1}});
  f.Command(0);
  f.Poll();
  f.Command(kCommandExport);
  f.Poll();
  EXPECT_EQ(f.prompts.Messages().size(), 2u) << "an automatic export shows nothing";
  EXPECT_EQ(f.host.Named("NewExportFile").size(), 3u);
}

TEST(ControlExport, TheTableStaysWhenNothingCouldBeWritten) {
  Trace f;
  f.Add({{1, 0}, {2, 0}});
  f->SetExportFile(f.dir.File("no/such/dir/trace.xls"));
  f.Command(kCommandExport);
  f.Poll();
  EXPECT_EQ(f.DataRows(), 2);
  ASSERT_GE(f.prompts.Messages().size(), 2u);
  EXPECT_EQ(f.prompts.Messages()[0].text.rfind("Open File : ", 0), 0u);
  EXPECT_EQ(f.prompts.Messages().back().text, "ExportExcelFile Error Path/File access error");
  EXPECT_FALSE(f->GetSurface().busyCursor);
}

TEST(ControlExport, WithoutAFileTheButtonAsksAndTheCommandTakesTheDefaultName) {
  for (const auto& [format, name] : {std::pair<int16_t, const char*>{0, "Vantrel.xls"},
                                     {1, "Vantrel.xlsx"},
                                     {2, "Vantrel.csv"}}) {
    SCOPED_TRACE(name);
    Trace f;
    f->SetExportFile("");
    f->SetExportFormat(format);
    f.Add({{1, 0}});
    f->ClickExportButton();
    ASSERT_EQ(f.prompts.Messages().size(), 1u);
    EXPECT_EQ(f.prompts.Messages()[0].text, "No export file defined !");
    EXPECT_EQ(f.prompts.Messages()[0].title, "Vantrel Export File");
    EXPECT_EQ(f.DataRows(), 1);
    f.Command(kCommandExport);
    f.Poll();
    EXPECT_EQ(f->ExportFile(), f.dir.Path().string() + "/" + name);
  }
}

TEST(ControlExport, NamingModesWriteTheirFiles) {
  Trace f;
  f->SetIndexFile(1);
  f->SetExportFile(f.dir.Path().string() + "/");
  f.Add({{1, 0}});
  f->ClickExportButton();
  EXPECT_EQ(f->ExportFile(), f.dir.File("Vantrel.xls"));
  EXPECT_TRUE(ReadBiffFile(f.dir.File("Vantrel_261115081530.xls")).wellFormed);
  f->SetIndexFile(2);
  f.Add({{2, 0}});
  f.Command(0, 7);
  f.Poll();
  f->ClickExportButton();
  EXPECT_TRUE(ReadBiffFile(f.dir.File("Vantrel_7.xls")).wellFormed);
}

}  // namespace
}  // namespace vantrel
