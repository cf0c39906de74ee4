#include "description/column_parser.h"

#include <gtest/gtest.h>

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
  bool flaggedBeforeRead = false;  // SymbolFileLoaded was set when the symbol file was read
};

// Parses the lines as section REGISTER_<n> of an otherwise empty file.
Parsed Parse(const std::string& lines, int n = 0) {
  Parsed p;
  p.d.DefaultColumnWidth = 777;
  const ProfileFile file =
      ProfileFile::Parse("[REGISTER_" + std::to_string(n) + "]\n" + lines + "\n[OTHER]\n");
  const auto read = [&] {
    ++p.symbolReads;
    p.flaggedBeforeRead = p.d.SymbolFileLoaded;
  };
  p.ok = ParseRegisterSection(p.d, file, "REGISTER_", n, read, p.err);
  return p;
}

std::vector<int> DefinedColumns(const TraceDescription& d) {
  std::vector<int> defined;
  for (size_t i = 0; i < d.Columns.size(); ++i) {
    if (d.Columns[i].Defined == -1) defined.push_back(static_cast<int>(i));
  }
  return defined;
}

TEST(ColumnKeys, TypesAndPositionLimits) {
  struct Case {
    const char* key;
    int16_t type;
    int16_t position;  // -1 here: the line is skipped
  };
  const Case cases[] = {{"Bit_31", 1, 31}, {"Bit_32", 1, -1}, {"bit_0", 1, 0},   {"Nibe7", 2, 7},
                        {"Nibe8", 2, -1},  {"Nible1", 2, -1}, {"Byte3", 3, 3},   {"BYTE4", 3, -1},
                        {"Word1", 4, 1},   {"Word2", 4, -1},  {"Long5", 5, 0},   {"Strg9", 6, 0},
                        {"Bits3", 0, -1},  {"Bit_-2", 1, -2}, {"Bit_ 12", 1, 12}};
  for (const Case& c : cases) {
    const Parsed p = Parse(std::string(c.key) + "=3,,Alarm,%b", 5);
    ASSERT_TRUE(p.ok) << c.key;
    const ColumnDef& col = p.d.Columns[3];
    const bool skipped = c.position == -1 || c.type == 0;
    EXPECT_EQ(col.Defined, skipped ? 0 : -1) << c.key;
    EXPECT_EQ(col.FieldType, skipped ? 0 : c.type) << c.key;
    EXPECT_EQ(p.d.ColumnCount, skipped ? 0 : 3) << c.key;
    if (skipped) continue;
    EXPECT_EQ(col.Position, c.position) << c.key;
    EXPECT_EQ(col.RegisterIndex, 5) << c.key;
  }
}

TEST(ColumnLines, SkippedLinesLeaveTheColumnUndefined) {
  for (const char* line : {";Bit_0=4,900,C,%d", "Bit_0=4,9", "Bit_0=,4,900,C,%d", "Bit_0=49000",
                           "Bit_0=4,900", "Bit_0=4,900,Caption", "Bit_0=4,900,C,d",
                           "Byte0=4,,C,%s 0)Off", "Byte0=4,,C,%s \\0)Off \\1 On"}) {
    const Parsed p = Parse(line);
    EXPECT_TRUE(p.ok) << line;
    EXPECT_EQ(p.d.Columns[4].Defined, 0) << line;
    EXPECT_EQ(p.d.ColumnCount, 0) << line;
  }
  // A value of fewer than five characters is skipped before anything is stored; a longer
  // one that is still incomplete keeps what it stored.
  EXPECT_EQ(Parse("Byte2=4,,x").d.Columns[4].FieldType, 0);
  const ColumnDef s = Parse("Byte2=4,,xy").d.Columns[4];
  EXPECT_EQ(std::tie(s.FieldType, s.Position, s.Width),
            std::make_tuple(int16_t{3}, int16_t{2}, 777));
  EXPECT_EQ(Parse("Byte0=4,,C,%s \\0)Off \\1 On").d.Columns[4].Values, std::vector<int32_t>{0});

  // An earlier complete line keeps the column defined; the later one still changes it.
  const ColumnDef a = Parse("Word1=6,500,Level,%d\nByte0=6,900,x").d.Columns[6];
  EXPECT_EQ(std::tie(a.Defined, a.FieldType, a.Width),
            std::make_tuple(int16_t{-1}, int16_t{3}, 900));
  EXPECT_EQ(a.Caption, "Level");
}

TEST(ColumnLines, FieldsOfACompleteLine) {
  const Parsed p = Parse("Long=2.5,1234.5, Big Counter ,  text%2d   \nStrg=127,,,%a");
  ASSERT_TRUE(p.ok);
  const ColumnDef& col = p.d.Columns[2];  // 2.5 rounds to 2
  EXPECT_EQ(col.Width, 1234);
  EXPECT_EQ(col.Caption, " Big Counter ");
  EXPECT_EQ(col.DisplayCode, "2d");
  EXPECT_EQ(p.d.Columns[127].Caption, "");
  EXPECT_EQ(p.d.ColumnCount, 127);
  EXPECT_EQ(DefinedColumns(p.d), (std::vector<int>{2, 127}));
  // The display code ends at a blank more than one character after the percent sign.
  for (const auto& [code, expected] : std::vector<std::pair<std::string, std::string>>{
           {"%s\\0)Off", "s\\0)Off"}, {"% x", " x"}, {"a b%d", "d"}}) {
    const Parsed one = Parse("Bit_0=1,,C," + code);
    EXPECT_EQ(one.d.Columns[1].DisplayCode, expected) << code;
    EXPECT_EQ(one.d.Columns[1].Defined, -1) << code;
  }
}

TEST(ColumnSections, ErrorTexts) {
  for (const auto& [lines, n] :
       std::vector<std::pair<std::string, int>>{{"Word0=200,800,Big,%d", 0},
                                                {"Word0=-1,800,Big,%d", 2},
                                                {"Bit_0=1,,C,%d\nNote", 4},
                                                {"Bit_0=1,99999999999,C,%d", 0},
                                                {"Bit_0=1,,C,%s )x\\1", 0},
                                                {"Bit_0=1,,C,%s \\1e12)x", 0}}) {
    EXPECT_EQ(Parse(lines, n).err, "Reading error in section REGISTER_" + std::to_string(n))
        << lines;
  }
  // Column numbers out of range only matter for lines of a known type in range.
  EXPECT_TRUE(Parse("Bits=200,800,Big,%d").ok);
  EXPECT_TRUE(Parse("Word2=200,800,Big,%d").ok);

  const Parsed stopped = Parse("Bit_0=1,,A,%d\nBit_1=300,,B,%d\nBit_2=2,,C,%d");
  EXPECT_FALSE(stopped.ok);
  EXPECT_EQ(DefinedColumns(stopped.d), std::vector<int>{1});

  TraceDescription d;
  std::string err;
  const ProfileFile file =
      ProfileFile::Parse("[REGISTER_1]\n[REGISTER_3]\na=" + std::string(32763, 'x') + "\n");
  EXPECT_TRUE(ParseRegisterSection(d, file, "REGISTER_", 0, {}, err));  // missing
  EXPECT_TRUE(ParseRegisterSection(d, file, "REGISTER_", 1, {}, err));  // empty
  EXPECT_FALSE(ParseRegisterSection(d, file, "REGISTER_", 3, {}, err));
  EXPECT_EQ(err, "Too many bytes in the section REGISTER_3");
}

TEST(ValueTexts, EntriesRangesAndDefault) {
  const ColumnDef col =
      Parse("Byte2=4,900,Pump state,%s \\0)Off \\1 3 5..7)On \\7..5)X \\)Unknown ").d.Columns[4];
  EXPECT_EQ(col.Defined, -1);
  EXPECT_EQ(col.Values, (std::vector<int32_t>{0, 1, 3, 5, 6, 7}));
  EXPECT_EQ(col.ValueTexts, (std::vector<std::string>{"Off", "On", "On", "On", "On", "On"}));
  EXPECT_EQ(col.DefaultText, "Unknown");

  const Parsed blanks = Parse("Byte0=1,,C,%GM \\1  -2.5 2.5..4)x");
  EXPECT_EQ(blanks.d.Columns[1].Values, (std::vector<int32_t>{1, 0, -2, 2, 4}));
  EXPECT_EQ(blanks.symbolReads, 1);
  const ColumnDef onlyDefault = Parse("Byte0=1,,C,%s \\)Unknown").d.Columns[1];
  EXPECT_TRUE(onlyDefault.Values.empty());
  EXPECT_EQ(onlyDefault.DefaultText, "Unknown");

  // Other display codes keep no list, and a new list replaces the old one.
  EXPECT_TRUE(Parse("Byte0=1,,C,%d \\0)Off").d.Columns[1].Values.empty());
  const ColumnDef replaced = Parse("Byte0=1,,C,%s \\0)A \\)D\nByte1=1,,C,%s \\5)B").d.Columns[1];
  EXPECT_EQ(replaced.Values, std::vector<int32_t>{5});
  EXPECT_EQ(replaced.DefaultText, "");
}

TEST(ValueTexts, The2048thEntryFailsTheSection) {
  const Parsed full = Parse("Byte0=7,,C,%s \\0..2046)x");
  ASSERT_TRUE(full.ok);
  EXPECT_EQ(full.d.Columns[7].Values.size(), 2047U);
  EXPECT_EQ(full.d.Columns[7].Values.back(), 2046);

  const Parsed over = Parse("Byte0=7,,C,%s \\0..2046)x \\5000)y");
  EXPECT_FALSE(over.ok);
  EXPECT_EQ(over.err, "Too many value with a string in culumn number 7Read vtl file");
  EXPECT_EQ(over.d.Columns[7].Values.size(), 2047U);
  EXPECT_FALSE(Parse("Byte0=7,,C,%s \\0..1e9)x").ok);  // a huge range stops at the limit
}

TEST(SymbolColumns, SymbolFileIsReadOnceOnTheFirstGColumn) {
  const Parsed p = Parse("Bit_0=1,,A,%d\nBit_1=2,,B,%gs\nWord0=3,,C,%Gm \\1)x");
  EXPECT_EQ(p.symbolReads, 1);
  EXPECT_TRUE(p.flaggedBeforeRead);
  EXPECT_EQ(p.d.Columns[3].Values, std::vector<int32_t>{1});
  EXPECT_EQ(Parse("Bit_0=1,,A,%d").symbolReads, 0);
}

}  // namespace
}  // namespace vantrel
