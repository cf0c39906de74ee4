// The spreadsheet writer, byte for byte.

#include "output/excel_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/runtime_error.h"
#include "support/temp_dir.h"

namespace vantrel {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

// The size of a file that holds only the start record, the formats and the end record.
size_t FormatsOnlySize() {
  size_t size = 8 + 6 + 4;
  for (int i = 0; i < ExcelFile::kFormatCount; ++i)
    size += 5 + ExcelFile::DefaultFormat(i).size();
  return size;
}

class Writer : public ::testing::Test {
 protected:
  // The bytes that `write` appends after the formats of a new file.
  template <typename Write>
  Bytes Appended(Write write) {
    // A new file each time: the writer does not truncate an old one.
    const std::string path = dir.File("cells" + std::to_string(++files) + ".xls");
    ExcelFile file(StandardExportFiles());
    file.OpenFile(path);
    write(file);
    file.CloseFile();
    const Bytes all = ReadAll(path);
    const size_t head = FormatsOnlySize() - 4;
    EXPECT_GE(all.size(), head + 4);
    EXPECT_EQ(Bytes(all.end() - 4, all.end()), (Bytes{0x0A, 0, 0, 0}));
    return Bytes(all.begin() + static_cast<std::ptrdiff_t>(head), all.end() - 4);
  }

  testing::TempDir dir;
  int files = 0;
};

TEST_F(Writer, AFileOfFormatsOnly) {
  const std::string path = dir.File("empty.xls");
  ExcelFile file(StandardExportFiles());
  file.OpenFile(path);
  file.CloseFile();
  const Bytes bytes = ReadAll(path);
  ASSERT_EQ(bytes.size(), FormatsOnlySize());
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 14),
            (Bytes{0x09, 0, 0x04, 0, 0x02, 0, 0x0A, 0, 0x1F, 0, 0x02, 0, 23, 0}));
  // "General" first; the whole list is held byte for byte by the reference export file.
  EXPECT_EQ(Bytes(bytes.begin() + 14, bytes.begin() + 26),
            (Bytes{0x1E, 0, 8, 0, 7, 'G', 'e', 'n', 'e', 'r', 'a', 'l'}));
  EXPECT_TRUE(file.TakeNotices().empty());
}

TEST_F(Writer, Cells) {
  EXPECT_EQ(Appended([](ExcelFile& f) { EXPECT_TRUE(f.EWriteString(1, 1, "AB")); }),
            (Bytes{0x04, 0, 0x0A, 0, 0, 0, 0, 0, 0, 0, 0, 0x02, 0x41, 0x42}));
  // Text bytes are written as they are (Windows-1252: e acute, the euro sign).
  EXPECT_EQ(Appended([](ExcelFile& f) { EXPECT_TRUE(f.EWriteString(1, 1, "\xE9\x80")); }),
            (Bytes{0x04, 0, 0x0A, 0, 0, 0, 0, 0, 0, 0, 0, 0x02, 0xE9, 0x80}));
  EXPECT_EQ(Appended([](ExcelFile& f) { EXPECT_TRUE(f.EWriteString(3, 2, "")); }),
            (Bytes{0x04, 0, 0x08, 0, 2, 0, 1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Appended([](ExcelFile& f) { EXPECT_TRUE(f.EWriteInteger(2, 3, 7)); }),
            (Bytes{0x02, 0, 0x09, 0, 0x01, 0, 0x02, 0, 0, 0x01, 0, 0x07, 0}));
  EXPECT_EQ(Appended([](ExcelFile& f) { EXPECT_TRUE(f.EWriteInteger(1, 1, -2)); }),
            (Bytes{0x02, 0, 0x09, 0, 0, 0, 0, 0, 0, 0x01, 0, 0xFE, 0xFF}));
  Bytes number{0x03, 0, 0x0F, 0, 0, 0, 0x01, 0, 0, 0x02, 0};
  const double value = 1.5;
  uint8_t raw[8];
  std::memcpy(raw, &value, 8);
  number.insert(number.end(), raw, raw + 8);
  EXPECT_EQ(Appended([](ExcelFile& f) { EXPECT_TRUE(f.EWriteDouble(1, 2, 1.5, 2)); }), number);
}

TEST_F(Writer, ColumnWidthsAndRowHeights) {
  EXPECT_EQ(Appended([](ExcelFile& f) { EXPECT_TRUE(f.SetColumnWidth(1, 1, 10)); }),
            (Bytes{0x24, 0, 0x04, 0, 0, 0, 0, 0x0A}));
  EXPECT_EQ(Appended([](ExcelFile& f) { EXPECT_EQ(f.SetDefaultRowHeight(14), 0); }),
            (Bytes{0x25, 0, 0x02, 0, 0x18, 0x01}));
  const Bytes row32767 = Appended([](ExcelFile& f) { EXPECT_EQ(f.SetRowHeight(32767, 1), 0); });
  ASSERT_EQ(row32767.size(), 20u);
  EXPECT_EQ(Bytes(row32767.begin(), row32767.begin() + 12),
            (Bytes{0x08, 0, 0x10, 0, 0xFE, 0x7F, 0, 0, 0, 0x01, 20, 0}));
  const Bytes row32768 = Appended([](ExcelFile& f) { EXPECT_EQ(f.SetRowHeight(32768, 1), 0); });
  ASSERT_EQ(row32768.size(), 20u);
  EXPECT_EQ(row32768[4], 0x00);
  EXPECT_EQ(row32768[5], 0x80) << "no minus one above 32767";
  EXPECT_EQ(Bytes(row32768.begin() + 12, row32768.end()), Bytes(8, 0));
}

TEST_F(Writer, RefusedValuesWriteNothing) {
  EXPECT_TRUE(Appended([](ExcelFile& f) {
                EXPECT_FALSE(f.EWriteInteger(1, 4, 40000));
                EXPECT_EQ(f.LastError(), "WriteInteger in Column 4 Error : Overflow");
                EXPECT_FALSE(f.SetColumnWidth(1, 1, 128));
                EXPECT_EQ(f.LastError(), "SetColumnWidth Error : Overflow");
                EXPECT_EQ(f.SetRowHeight(1, 1639), 6);
                EXPECT_TRUE(f.TakeNotices().empty()) << "cell failures are results only";
              }).empty());
  EXPECT_EQ(Appended([](ExcelFile& f) {
              EXPECT_FALSE(f.SetDefaultRowHeight(1639).has_value());
              EXPECT_EQ(f.TakeNotices(),
                        std::vector<std::string>{"SetDefaultRowHeight Error : Overflow"});
            }),
            Bytes{});
}

TEST_F(Writer, ALabelOver255CharactersReachesTheCaller) {
  EXPECT_TRUE(Appended([](ExcelFile& f) {
                EXPECT_THROW(f.EWriteString(1, 1, std::string(256, 'x')), RuntimeError);
              }).empty());
  const Bytes longest =
      Appended([](ExcelFile& f) { EXPECT_TRUE(f.EWriteString(1, 1, std::string(255, 'x'))); });
  ASSERT_EQ(longest.size(), 12u + 255u);
  EXPECT_EQ(longest[11], 255);
}

TEST_F(Writer, FailuresAreResults) {
  ExcelFile file(StandardExportFiles());
  EXPECT_FALSE(file.EWriteString(1, 1, "A")) << "nothing is open yet";
  EXPECT_EQ(file.LastError(), "WriteString in Column 1 Error : Bad file name or number");
  EXPECT_FALSE(file.EWriteDouble(1, 2, 1.0, 0));
  EXPECT_THROW(file.CloseFile(), RuntimeError);

  file.OpenFile(dir.File("missing/dir/x.xls"));
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.TakeNotices(),
            std::vector<std::string>{"Open File : " + dir.File("missing/dir/x.xls") +
                                     " Error\r\nPath not found"});
}

}  // namespace
}  // namespace vantrel
