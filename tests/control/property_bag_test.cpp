#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/recording_host.h"
#include "support/temp_dir.h"
#include "vantrel/property_bag.h"

namespace vantrel {
namespace {

using testing::ControlFixture;

TEST(PropertyBag, OnlyChangedValuesAreStoredUnderTheirNames) {
  ControlFixture f;
  MemoryPropertyBag bag;
  f->WriteProperties(bag);
  EXPECT_TRUE(bag.Entries().empty());
  f->SetResourcePath("/srv/vtl,/opt/vtl");
  f->SetInterval(250);
  f->SetDateStampCol(true);
  f->SetStartRegister(-5);
  f->SetGridFontSize("12");
  f->SetMaxRows(100);
  f->WriteProperties(bag);
  f->SetMaxRows(500);  // back to its default: removed
  f->WriteProperties(bag);
  EXPECT_EQ(bag.Entries(),
            (std::vector<std::pair<std::string, std::string>>{{"ResourcePath", "/srv/vtl,/opt/vtl"},
                                                              {"Interval", "250"},
                                                              {"GridFontSize", "12"},
                                                              {"DateStampCol", "True"},
                                                              {"StartRegister", "-5"}}));
}

// Every property set away from its default is read back: written again, it gives the same bag.
TEST(PropertyBag, RoundTripRestoresEveryProperty) {
  ControlFixture a;
  a->SetResourcePath("/r");
  a->SetProjectPath("/p");
  a->SetUserFile("u.vtlr");
  a->SetSymbFile("s.sy6");
  a->SetInterval(300);
  a->SetDisplayMode(2);
  a->SetGridFontName("Mono");
  a->SetGridFontSize("9");
  a->SetDateStampCol(true);
  a->SetTimeStampCol(true);
  a->SetPCDStatusCol(true);
  a->SetPCDStatus(3);
  a->SetStartRegister(1000);
  a->SetMaxRows(77);
  a->SetMaxGraph(40);
  a->SetExportFile("/tmp/t.xls");
  a->SetAutoExport(true);
  a->SetIndexFile(2);
  a->SetSelColumn("4,6");
  MemoryPropertyBag bag;
  a->WriteProperties(bag);
  ASSERT_EQ(bag.Entries().size(), 19u);

  ControlFixture b;
  b.host.ClearEvents();
  b->ReadProperties(bag);
  EXPECT_TRUE(b.host.events.empty()) << "loading must not run setters or raise events";
  MemoryPropertyBag again;
  b->WriteProperties(again);
  EXPECT_EQ(again.Entries(), bag.Entries());
  EXPECT_EQ(b->SelColumn(), "4,6");
}

TEST(PropertyBag, LoadingARunningModeDoesNotStartAcquisition) {
  MemoryPropertyBag bag;
  bag.WriteProperty("RunMode", int32_t{2}, int32_t{0});
  bag.WriteProperty("Enabled", false, true);
  ControlFixture f;
  f->ReadProperties(bag);
  EXPECT_EQ(f->RunMode(), 2);
  EXPECT_FALSE(f->Enabled());
  f.loop.Advance(5000);
  EXPECT_TRUE(f.host.Named("ReadPCDReg").empty());
  EXPECT_EQ(f->ReadState(), 0);
}

TEST(PropertyBag, UnreadableValuesFallBackToTheirDefaults) {
  MemoryPropertyBag bag;
  bag.SetText("Interval", "fast");
  bag.SetText("StartRegister", "70000");
  bag.SetText("AutoExport", "maybe");
  ControlFixture f;
  f->ReadProperties(bag);
  EXPECT_EQ(f->Interval(), 1000);
  EXPECT_EQ(f->StartRegister(), 0);
  EXPECT_FALSE(f->AutoExport());
}

TEST(FilePropertyBag, SavesAndLoadsTextsWithLineBreaksAndNonAsciiCharacters) {
  testing::TempDir dir;
  const std::string path = dir.File("control.properties");
  FilePropertyBag out;
  out.WriteProperty("ExportFile", std::string("C:\\t\\Pumpe \xE9\r\n100%.xls"), std::string());
  out.WriteProperty("MaxRows", int32_t{42}, int32_t{500});
  ASSERT_TRUE(out.Save(path));

  std::ifstream raw(path);
  std::string content((std::istreambuf_iterator<char>(raw)), {});
  EXPECT_NE(content.find("ExportFile=C:\\t\\Pumpe \xC3\xA9%0D%0A100%25.xls\n"), std::string::npos);

  FilePropertyBag in;
  ASSERT_TRUE(in.Load(path));
  EXPECT_TRUE(in.Problems().empty());
  EXPECT_EQ(std::get<std::string>(in.ReadProperty("ExportFile", std::string())),
            "C:\\t\\Pumpe \xE9\r\n100%.xls");
  EXPECT_EQ(std::get<int32_t>(in.ReadProperty("MaxRows", int32_t{500})), 42);
}

TEST(FilePropertyBag, ReportsBadLinesWithTheirNumbersAndKeepsTheRest) {
  testing::TempDir dir;
  const std::string path = dir.File("control.properties");
  std::ofstream(path) << "# settings\nInterval=250\nno equals sign\n=5\nbad name=1\n"
                         "ExportFile=%zz\nMaxRows=9\n";
  FilePropertyBag bag;
  ASSERT_TRUE(bag.Load(path));
  std::vector<int> badLines;
  for (const PropertyFileProblem& problem : bag.Problems())
    badLines.push_back(problem.line);
  EXPECT_EQ(badLines, (std::vector<int>{3, 4, 5, 6}));
  EXPECT_EQ(std::get<int32_t>(bag.ReadProperty("Interval", int32_t{1000})), 250);
  EXPECT_EQ(std::get<int32_t>(bag.ReadProperty("MaxRows", int32_t{500})), 9);
}

}  // namespace
}  // namespace vantrel
