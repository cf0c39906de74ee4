// Exporting the table: file names, the columns written and their cell types, the messages
// of commanded exports, and the table kept or emptied.

#include "output/trace_export.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "decoding/row_bookkeeping.h"
#include "output/export_naming.h"
#include "output/output_steps.h"
#include "platform/date_serial.h"
#include "support/biff_reader.h"
#include "support/module_fixture.h"
#include "support/temp_dir.h"

namespace vantrel {
namespace {

using testing::BiffSheet;
using testing::ReadBiffFile;

// The naming modes' file names are checked where the export writes them.
TEST(ExportNames, DefaultNameAndAnUnknownNamingMode) {
  EXPECT_EQ(WithDefaultExportName("C:\\t\\"), "C:\\t\\Vantrel.xls");
  EXPECT_EQ(WithDefaultExportName("C:\\t.dir\\trace"), "C:\\t.dir\\traceVantrel.xls");
  EXPECT_EQ(WithDefaultExportName("/data/t.dir/trace"), "/data/t.dir/traceVantrel.xls");
  EXPECT_EQ(WithDefaultExportName("/data/trace.xls"), "/data/trace.xls");
  EXPECT_EQ(ExportTargetName("D:\\x\\T.xls", 3, DateTime{}, 7), "");
}

TEST(DateSerials, TextsOfTheTableReadBack) {
  // The table's own date, time and date-and-time texts are read in the export tests.
  EXPECT_DOUBLE_EQ(*DateSerialFromText("31/12/99"), 36525.0);
  EXPECT_DOUBLE_EQ(*DateSerialFromText("01/01/1900"), 2.0);
  EXPECT_DOUBLE_EQ(*DateSerialFromText("29/02/24"), 45351.0);
  EXPECT_DOUBLE_EQ(DateSerial({2026, 11, 15, 8, 15, 30, 0}), 46341.0 + 29730.0 / 86400.0);
  for (const char* bad :
       {"", "Invalid time", "30/02/26", "15/13/26", "24:00:00", "12:60", "1/2", "15/11/26 x"}) {
    EXPECT_FALSE(DateSerialFromText(bad).has_value()) << bad;
  }
}

// A table of three trace columns (a number, a date and time stamp, a text) and two rows.
struct ExportFixture : testing::ModuleFixture {
  ExportFixture() {
    Define(1, 4, 0, 0, "Level", "d", 900);
    Define(2, 5, 1, 0, "Stamp", "t", 1700);
    Define(3, 5, 2, 0, "Name", "gs", 1400);
    Build();  // columns: number, date, time, status, Level, Stamp, Name
    StampAt(8, 15, 30);
    m.PCDStatusText = "Run";
    AddTextRow({" 12", "14/11/26 23:59:58", "Pump"});
    StampAt(8, 15, 31);
    AddTextRow({"-3.5", "15/11/26 00:00:01", "Valve"});
    m.props.ExportFile = dir.File("trace.xls");
    m.services.currentDirectory = dir.Path().string();
  }
  BiffSheet Sheet(const std::string& name = "trace.xls") const {
    return ReadBiffFile(dir.File(name));
  }
  int DataRows() const { return m.grid.RowCount() - 1; }

  testing::TempDir dir;
};

// The cells' types, values and formats are read back by an independent reader in
// readback_test.cpp.
TEST(Export, ShownColumnsWithTheirWidthsAndTheTableEmptied) {
  ExportFixture f;
  f.m.props.DateStampCol = true;
  f.m.props.TimeStampCol = true;
  ExportFromButton(f.m);
  const BiffSheet sheet = f.Sheet();
  ASSERT_TRUE(sheet.wellFormed);
  // Date, time, Level, Stamp, Name: the status column is not shown.
  const std::vector<std::string> headers{"PC Date", "PC Time", "Level", "Stamp", "Name"};
  for (int c = 1; c <= 5; ++c) {
    ASSERT_NE(sheet.Cell(1, c), nullptr) << c;
    EXPECT_EQ(sheet.Cell(1, c)->text, headers[static_cast<size_t>(c - 1)]);
  }
  EXPECT_EQ(sheet.Cell(1, 6), nullptr);
  EXPECT_EQ(sheet.widths.at(4), 17) << "twips / 100";
  EXPECT_EQ(f.host.Named("NewExportFile").size(), 1u);
  EXPECT_EQ(f.DataRows(), 0) << "the table is emptied after the export";
  EXPECT_TRUE(f.prompts.Messages().empty());
  EXPECT_FALSE(f.m.surface.busyCursor);
}

TEST(Export, SelectedColumnsOnlyWhateverTheStampsSay) {
  ExportFixture f;
  f.m.props.DateStampCol = true;
  f.m.grid.SetSelected(4, true);
  f.m.grid.SetSelected(6, true);
  ExportFromButton(f.m);
  const BiffSheet sheet = f.Sheet();
  EXPECT_EQ(sheet.Cell(1, 1)->text, "Level");
  EXPECT_EQ(sheet.Cell(1, 2)->text, "Name");
  EXPECT_EQ(sheet.Cell(1, 3), nullptr);
  EXPECT_EQ(sheet.Cell(2, 2)->text, "Pump");
}

TEST(Export, HiddenStampColumnsAreLeftOut) {
  ExportFixture f;
  f.m.props.DateStampCol = true;
  f.m.props.PCDStatusCol = true;
  ExportFromButton(f.m);
  const BiffSheet sheet = f.Sheet();
  EXPECT_EQ(sheet.Cell(1, 1)->text, "PC Date");
  EXPECT_EQ(sheet.Cell(1, 2)->text, "PCD");
  EXPECT_EQ(sheet.Cell(2, 2)->text, "Run");
  EXPECT_EQ(sheet.Cell(1, 3)->text, "Level");
}

TEST(Export, NumbersFollowTheTableDecimalSeparator) {
  ExportFixture f;
  f.m.decimalSeparator = ',';
  f.AddTextRow({"12,5", "", "abc"});
  f.AddTextRow({"-3.5", "", "x"});
  ExportFromButton(f.m);
  const BiffSheet sheet = f.Sheet();
  EXPECT_EQ(sheet.Cell(4, 1)->id, 3);
  EXPECT_DOUBLE_EQ(sheet.Cell(4, 1)->number, 12.5);
  EXPECT_EQ(sheet.Cell(5, 1)->id, 4) << "-3.5 is not a number with a comma separator";
  EXPECT_EQ(sheet.Cell(4, 2), nullptr) << "an empty cell stays empty";
  EXPECT_EQ(sheet.Cell(4, 3)->text, "abc");
}

TEST(Export, AFailedColumnStopsAloneAndIsReportedWhenCommanded) {
  ExportFixture f;
  f.AddTextRow({"1", "Invalid time", std::string(256, 'x')});
  f.m.CommandedExport = true;
  ExportFromButton(f.m);
  const BiffSheet sheet = f.Sheet();
  ASSERT_TRUE(sheet.wellFormed);
  EXPECT_EQ(sheet.Cell(4, 1)->number, 1.0);
  EXPECT_NE(sheet.Cell(2, 2), nullptr) << "rows before the bad one are written";
  EXPECT_EQ(sheet.Cell(4, 2), nullptr);
  EXPECT_EQ(sheet.Cell(3, 3)->text, "Valve");
  EXPECT_EQ(sheet.Cell(4, 3), nullptr);
  const auto& shown = f.prompts.Messages();
  ASSERT_EQ(shown.size(), 3u);
  EXPECT_EQ(shown[0].text, "WriteColumn 5 Error : Type mismatch");
  EXPECT_EQ(shown[0].title, "Vantrel exportation aborted !");
  EXPECT_EQ(shown[1].text, "WriteColumn 6 Error : Overflow");
  EXPECT_EQ(shown[2].text, "Successful export to file : " + f.dir.File("trace.xls"));
  EXPECT_EQ(f.DataRows(), 0);
}

TEST(Export, AutomaticExportsShowNothing) {
  ExportFixture f;
  f.AddTextRow({"1", "Invalid time", "x"});
  f.m.CommandedExport = true;
  f.m.props.AutoExport = true;
  ExportFromButton(f.m);
  EXPECT_TRUE(f.prompts.Messages().empty());
  EXPECT_EQ(f.DataRows(), 0);
}

TEST(Export, TheTableStaysWhenNothingCouldBeWritten) {
  ExportFixture f;
  f.m.props.ExportFile = f.dir.File("no/such/dir/trace.xls");
  f.m.CommandedExport = true;
  ExportFromButton(f.m);
  EXPECT_EQ(f.DataRows(), 2);
  ASSERT_GE(f.prompts.Messages().size(), 2u);
  EXPECT_EQ(f.prompts.Messages()[0].text.rfind("Open File : ", 0), 0u);
  EXPECT_EQ(f.prompts.Messages().back().text, "ExportExcelFile Error Path/File access error");
  EXPECT_FALSE(f.m.surface.busyCursor);
}

TEST(Export, NoColumnToWriteKeepsTheTableAndRemovesTheFile) {
  testing::ModuleFixture f;
  testing::TempDir dir;
  f.Build();  // no trace column: only the stamp columns, all hidden
  f.AddTextRow({});
  f.m.props.ExportFile = dir.File("empty.xls");
  f.m.CommandedExport = true;
  ExportFromButton(f.m);
  EXPECT_FALSE(std::filesystem::exists(dir.File("empty.xls")));
  EXPECT_EQ(f.m.grid.RowCount(), 2);
  ASSERT_EQ(f.prompts.Messages().size(), 1u);
  EXPECT_EQ(f.prompts.Messages()[0].text, "Export aborted : No data to export !");
}

TEST(Export, TheButtonNeedsADataRow) {
  testing::ModuleFixture f;
  testing::TempDir dir;
  f.Define(1, 4, 0, 0, "A", "d");
  f.Build();
  f.m.props.ExportFile = dir.File("t.xls");
  ExportFromButton(f.m);
  EXPECT_FALSE(std::filesystem::exists(dir.File("t.xls")));
  EXPECT_TRUE(f.host.Named("NewExportFile").empty());
}

TEST(Export, WithoutAnExportFile) {
  ExportFixture f;
  f.m.props.ExportFile.clear();
  ExportFromButton(f.m);
  ASSERT_EQ(f.prompts.Messages().size(), 1u);
  EXPECT_EQ(f.prompts.Messages()[0].text, "No export file defined !");
  EXPECT_EQ(f.prompts.Messages()[0].title, "Vantrel Export File");
  EXPECT_EQ(f.DataRows(), 2);

  f.m.props.AutoExport = true;
  ExportFromButton(f.m);
  EXPECT_EQ(f.m.props.ExportFile, f.dir.File("Vantrel.xls"));
  EXPECT_TRUE(f.Sheet("Vantrel.xls").wellFormed);
}

TEST(Export, NamingModesWriteTheirFiles) {
  ExportFixture f;
  f.m.props.IndexFile = 1;
  f.m.props.ExportFile = f.dir.Path().string() + "/";
  ExportFromButton(f.m);
  EXPECT_EQ(f.m.props.ExportFile, f.dir.File("Vantrel.xls"));
  EXPECT_TRUE(f.Sheet("Vantrel_261115081530.xls").wellFormed);

  f.AddTextRow({"1", "", ""});
  f.m.props.IndexFile = 2;
  f.m.buffer.ExportIndex = 7;
  ExportFromButton(f.m);
  EXPECT_TRUE(f.Sheet("Vantrel_7.xls").wellFormed);
}

TEST(Export, AnOldLongerFileKeepsItsTail) {
  ExportFixture f;
  {
    std::ofstream old(f.dir.File("trace.xls"), std::ios::binary);
    old << std::string(5000, 'z');
  }
  ExportFromButton(f.m);
  EXPECT_EQ(std::filesystem::file_size(f.dir.File("trace.xls")), 5000u);
  EXPECT_TRUE(f.Sheet().wellFormed);
}

}  // namespace
}  // namespace vantrel
