// Exporting the table: file names, the columns chosen and their cell types, and what the
// export reports of the columns it could not write.

#include "output/trace_export.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "output/export_naming.h"
#include "platform/date_serial.h"
#include "support/biff_reader.h"
#include "support/temp_dir.h"
#include "support/trace_table.h"

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
struct ExportFixture : testing::TraceTable {
  ExportFixture() {
    Define(1, 4, 0, 0, "Level", "d", 900);
    Define(2, 5, 1, 0, "Stamp", "t", 1700);
    Define(3, 5, 2, 0, "Name", "gs", 1400);
    Build();  // columns: number, date, time, status, Level, Stamp, Name
    StampAt(8, 15, 30);
    status = "Run";
    AddTextRow({" 12", "14/11/26 23:59:58", "Pump"});
    StampAt(8, 15, 31);
    AddTextRow({"-3.5", "15/11/26 00:00:01", "Valve"});
  }
  ExportResult Export() { return TraceTable::Export(kExportExcel2, dir.File("trace.xls")); }
  BiffSheet Sheet() const { return ReadBiffFile(dir.File("trace.xls")); }
  std::vector<std::string> Headers() const {
    std::vector<std::string> out;
    const BiffSheet sheet = Sheet();
    for (int c = 1; sheet.Cell(1, c) != nullptr; ++c)
      out.push_back(sheet.Cell(1, c)->text);
    return out;
  }

  testing::TempDir dir;
};

// The cells' types, values and formats are read back by an independent reader in
// readback_test.cpp. Selected columns are exported whatever the stamps say; without a
// selection, every shown column.
TEST(Export, TheChosenColumnsWithTheirWidths) {
  using Headers = std::vector<std::string>;
  ExportFixture f;
  f.shown = {true, true, false};
  ASSERT_TRUE(f.Export().written);
  EXPECT_EQ(f.Headers(), (Headers{"PC Date", "PC Time", "Level", "Stamp", "Name"}));
  EXPECT_EQ(f.Sheet().widths.at(4), 17) << "twips / 100";
  f.shown = {true, false, true};
  f.Export();
  EXPECT_EQ(f.Headers(), (Headers{"PC Date", "PCD", "Level", "Stamp", "Name"}));
  EXPECT_EQ(f.Sheet().Cell(2, 2)->text, "Run");
  f.table.SetSelected(4, true);
  f.table.SetSelected(6, true);
  f.Export();
  EXPECT_EQ(f.Headers(), (Headers{"Level", "Name"}));
  EXPECT_EQ(f.Sheet().Cell(2, 2)->text, "Pump");
}

TEST(Export, NumbersFollowTheTableDecimalSeparator) {
  ExportFixture f;
  f.decimalSeparator = ',';
  f.AddTextRow({"12,5", "", "abc"});
  f.AddTextRow({"-3.5", "", "x"});
  f.Export();
  const BiffSheet sheet = f.Sheet();
  EXPECT_EQ(sheet.Cell(4, 1)->id, 3);
  EXPECT_DOUBLE_EQ(sheet.Cell(4, 1)->number, 12.5);
  EXPECT_EQ(sheet.Cell(5, 1)->id, 4) << "-3.5 is not a number with a comma separator";
  EXPECT_EQ(sheet.Cell(4, 2), nullptr) << "an empty cell stays empty";
  EXPECT_EQ(sheet.Cell(4, 3)->text, "abc");
}

TEST(Export, AFailedColumnStopsAloneAndIsReported) {
  ExportFixture f;
  f.AddTextRow({"1", "Invalid time", std::string(256, 'x')});
  const ExportResult result = f.Export();
  const BiffSheet sheet = f.Sheet();
  ASSERT_TRUE(sheet.wellFormed);
  EXPECT_EQ(sheet.Cell(4, 1)->number, 1.0);
  EXPECT_NE(sheet.Cell(2, 2), nullptr) << "rows before the bad one are written";
  EXPECT_EQ(sheet.Cell(4, 2), nullptr);
  EXPECT_EQ(sheet.Cell(3, 3)->text, "Valve");
  EXPECT_EQ(sheet.Cell(4, 3), nullptr);
  EXPECT_TRUE(result.written);
  ASSERT_EQ(result.messages.size(), 2u);
  EXPECT_EQ(result.messages[0].text, "WriteColumn 5 Error : Type mismatch");
  EXPECT_EQ(result.messages[0].title, "Vantrel exportation aborted !");
  EXPECT_EQ(result.messages[1].text, "WriteColumn 6 Error : Overflow");
  EXPECT_EQ(result.outcome.text, "Successful export to file : " + f.dir.File("trace.xls"));
}

TEST(Export, NoColumnToWriteRemovesTheFile) {
  testing::TraceTable f;
  testing::TempDir dir;
  f.Build();  // no trace column: only the stamp columns, all hidden
  f.AddTextRow({});
  const ExportResult result = f.Export(kExportExcel2, dir.File("empty.xls"));
  EXPECT_FALSE(std::filesystem::exists(dir.File("empty.xls")));
  EXPECT_FALSE(result.written);
  EXPECT_EQ(result.outcome.text, "Export aborted : No data to export !");
}

// A pipe or folder in the target's place is refused at once and left alone: writing into a
// pipe would wait for a reader.
TEST(Export, ATargetThatIsNoRegularFileIsRefusedAndLeftAlone) {
  ExportFixture f;
  ASSERT_EQ(::mkfifo(f.dir.File("pipe.csv").c_str(), 0600), 0);
  std::filesystem::create_directory(f.dir.File("folder.xls"));
  for (const auto& [format, name] :
       {std::pair<int16_t, const char*>{kExportCsv, "pipe.csv"}, {kExportExcel2, "folder.xls"}}) {
    const ExportResult result = f.TraceTable::Export(format, f.dir.File(name));
    EXPECT_TRUE(result.failed) << name;
    EXPECT_EQ(result.outcome.text,
              "ExportExcelFile Error " + f.dir.File(name) + " is not a regular file");
    EXPECT_TRUE(std::filesystem::exists(f.dir.File(name))) << name;
  }
}

TEST(Export, AnOldLongerFileKeepsItsTail) {
  ExportFixture f;
  {
    std::ofstream old(f.dir.File("trace.xls"), std::ios::binary);
    old << std::string(5000, 'z');
  }
  f.Export();
  EXPECT_EQ(std::filesystem::file_size(f.dir.File("trace.xls")), 5000u);
  EXPECT_TRUE(f.Sheet().wellFormed);
}

}  // namespace
}  // namespace vantrel
