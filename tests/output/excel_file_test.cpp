// The spreadsheet writer's limits and failures. The bytes it writes for a whole export are held
// by the reference export file (export_formats_test.cpp), and what independent readers make of
// them by the read-back tests.

#include "output/excel_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace vantrel {
namespace {

TEST(Writer, LimitsOfLabelsAndColumnWidths) {
  testing::TempDir dir;
  const std::string path = dir.File("limits.xls");
  size_t size = 0;
  {
    ExcelFile file(StandardExportFiles());
    file.OpenFile(path);
    file.CloseFile();
    size = std::filesystem::file_size(path);
  }
  ExcelFile file(StandardExportFiles());
  file.OpenFile(dir.File("cells.xls"));
  EXPECT_TRUE(file.EWriteString(1, 1, std::string(255, 'x')));
  EXPECT_FALSE(file.SetColumnWidth(1, 1, 128));
  EXPECT_EQ(file.LastError(), "SetColumnWidth Error : Overflow");
  file.CloseFile();
  EXPECT_EQ(std::filesystem::file_size(dir.File("cells.xls")), size + 12 + 255)
      << "the longest label alone was written";
}

TEST(Writer, FailuresAreResults) {
  testing::TempDir dir;
  ExcelFile file(StandardExportFiles());
  EXPECT_FALSE(file.EWriteString(1, 1, "A")) << "nothing is open yet";
  EXPECT_EQ(file.LastError(), "WriteString in Column 1 Error : Bad file name or number");
  file.OpenFile(dir.File("missing/dir/x.xls"));
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.TakeNotices(),
            std::vector<std::string>{"Open File : " + dir.File("missing/dir/x.xls") +
                                     " Error\r\nPath not found"});
}

}  // namespace
}  // namespace vantrel
