#include "description/column_parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace vantrel {
namespace {

struct Parsed {
  bool ok = false;
  std::string err;
  TraceDescription d;
  int symbolReads = 0;
};

// Parses the lines as section REGISTER_<n> of an otherwise empty file.
Parsed Parse(const std::string& lines, int n = 0) {
  Parsed p;
  p.d.DefaultColumnWidth = 777;
  const ProfileFile file =
      ProfileFile::Parse("[REGISTER_" + std::to_string(n) + "]\n" + lines + "\n[OTHER]\n");
  p.ok = ParseRegisterSection(
      p.d, file, "REGISTER_", n, [&] { ++p.symbolReads; }, p.err);
  return p;
}

// The shipped reference examples cover the usual keys and skipped lines; these are the
// limits and spellings they leave out.
TEST(ColumnKeys, TypesAndPositionLimits) {
  struct Case {
    const char* key;
    int16_t type;
    int16_t position;  // -1 here: the line is skipped
  };
  const Case cases[] = {{"bit_0", 1, 0},  {"Nibe7", 2, 7},  {"Nibe8", 2, -1},  {"BYTE4", 3, -1},
                        {"Word2", 4, -1}, {"Bits3", 0, -1}, {"Bit_-2", 1, -2}, {"Bit_ 12", 1, 12}};
  for (const Case& c : cases) {
    const Parsed p = Parse(std::string(c.key) + "=3,,Alarm,%b", 5);
    ASSERT_TRUE(p.ok) << c.key;
    const ColumnDef& col = p.d.Columns[3];
    const bool skipped = c.position == -1 || c.type == 0;
    EXPECT_EQ(col.Defined, skipped ? 0 : -1) << c.key;
    EXPECT_EQ(col.FieldType, skipped ? 0 : c.type) << c.key;
    EXPECT_EQ(col.Position, skipped ? 0 : c.position) << c.key;
  }
}

TEST(ColumnLines, SkippedLinesLeaveTheColumnUndefined) {
  for (const char* line : {"Bit_0=,4,900,C,%d", "Bit_0=49000", "Bit_0=4,900", "Bit_0=4,900,C,d",
                           "Byte0=4,,C,%s 0)Off", "Byte0=4,,C,%s \\0)Off \\1 On"}) {
    const Parsed p = Parse(line);
    EXPECT_TRUE(p.ok) << line;
    EXPECT_TRUE(std::none_of(p.d.Columns.begin(), p.d.Columns.end(), [](const ColumnDef& c) {
      return c.Defined != 0;
    })) << line;
  }
  // An incomplete line keeps what it stored: the type and position, the default width, the
  // value-list entries read before the one that broke off.
  const ColumnDef s = Parse("Byte2=4,,xy").d.Columns[4];
  EXPECT_EQ(std::tie(s.FieldType, s.Position, s.Width),
            std::make_tuple(int16_t{3}, int16_t{2}, 777));
  EXPECT_EQ(Parse("Byte0=4,,C,%s \\0)Off \\1 On").d.Columns[4].Values, std::vector<int32_t>{0});
  // An earlier complete line keeps the column defined; the later one still changes it.
  const ColumnDef a = Parse("Word1=6,500,Level,%d\nByte0=6,900,x").d.Columns[6];
  EXPECT_EQ(std::tie(a.Defined, a.FieldType, a.Width),
            std::make_tuple(int16_t{-1}, int16_t{3}, 900));
}

TEST(ColumnLines, FieldsOfACompleteLine) {
  const Parsed p = Parse("Long=2.5,1234.5, Big Counter ,  text%2d   \nStrg=127,,,%a");
  ASSERT_TRUE(p.ok);
  const ColumnDef& col = p.d.Columns[2];  // 2.5 rounds to 2
  EXPECT_EQ(col.Width, 1234);
  EXPECT_EQ(col.Caption, " Big Counter ");
  EXPECT_EQ(col.DisplayCode, "2d");
  EXPECT_EQ(p.d.Columns[127].Defined, -1);
  EXPECT_EQ(p.d.ColumnCount, 127);
  // The display code ends at a blank more than one character after the percent sign.
  for (const auto& [code, expected] : std::vector<std::pair<std::string, std::string>>{
           {"%s\\0)Off", "s\\0)Off"}, {"% x", " x"}, {"a b%d", "d"}}) {
    EXPECT_EQ(Parse("Bit_0=1,,C," + code).d.Columns[1].DisplayCode, expected) << code;
  }
}

TEST(ColumnSections, ErrorsAndWhatIsNoError) {
  for (const char* lines :
       {"Word0=-1,800,Big,%d", "Bit_0=1,99999999999,C,%d", "Bit_0=1,,C,%s \\1e12)x"}) {
    EXPECT_EQ(Parse(lines, 2).err, "Reading error in section REGISTER_2") << lines;
  }
  // Column numbers out of range only matter for lines of a known type in range.
  EXPECT_TRUE(Parse("Bits=200,800,Big,%d\nWord2=200,800,Big,%d").ok);
  TraceDescription d;
  std::string err;
  const ProfileFile file = ProfileFile::Parse("[REGISTER_1]\n");
  EXPECT_TRUE(ParseRegisterSection(d, file, "REGISTER_", 0, {}, err));  // missing
  EXPECT_TRUE(ParseRegisterSection(d, file, "REGISTER_", 1, {}, err));  // empty
}

TEST(ValueTexts, EntriesRangesAndDefault) {
  const ColumnDef col =
      Parse("Byte2=4,900,Pump state,%s \\0)Off \\1 3 5..7)On \\7..5)X \\)Unknown ").d.Columns[4];
  EXPECT_EQ(col.Values, (std::vector<int32_t>{0, 1, 3, 5, 6, 7}));
  EXPECT_EQ(col.ValueTexts, (std::vector<std::string>{"Off", "On", "On", "On", "On", "On"}));
  EXPECT_EQ(col.DefaultText, "Unknown");
  const Parsed blanks = Parse("Byte0=1,,C,%GM \\1  -2.5 2.5..4)x");
  EXPECT_EQ(blanks.d.Columns[1].Values, (std::vector<int32_t>{1, 0, -2, 2, 4}));
  EXPECT_EQ(blanks.symbolReads, 1);  // read at the first "g" code, in any case
  // Other display codes keep no list, and a new list replaces the old one.
  EXPECT_TRUE(Parse("Byte0=1,,C,%d \\0)Off").d.Columns[1].Values.empty());
  const ColumnDef replaced = Parse("Byte0=1,,C,%s \\0)A \\)D\nByte1=1,,C,%s \\5)B").d.Columns[1];
  EXPECT_EQ(replaced.Values, std::vector<int32_t>{5});
  EXPECT_EQ(replaced.DefaultText, "");
  // 2047 entries fit (the 2048th fails the section), and a huge range stops at the limit.
  const Parsed full = Parse("Byte0=7,,C,%s \\0..2046)x");
  EXPECT_TRUE(full.ok);
  EXPECT_EQ(full.d.Columns[7].Values.size(), 2047U);
  EXPECT_FALSE(Parse("Byte0=7,,C,%s \\0..1e9)x").ok);
}

}  // namespace
}  // namespace vantrel
