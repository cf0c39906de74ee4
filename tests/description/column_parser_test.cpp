#include "description/column_parser.h"

#include <gtest/gtest.h>

#include <string>
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
    if (c.position == -1 || c.type == 0) {
      EXPECT_EQ(col.Defined, 0) << c.key;
      EXPECT_EQ(col.FieldType, 0) << c.key;
      EXPECT_EQ(p.d.ColumnCount, 0) << c.key;
      continue;
    }
    EXPECT_EQ(col.Defined, -1) << c.key;
    EXPECT_EQ(col.FieldType, c.type) << c.key;
    EXPECT_EQ(col.Position, c.position) << c.key;
    EXPECT_EQ(col.RegisterIndex, 5) << c.key;
    EXPECT_EQ(p.d.ColumnCount, 3) << c.key;
  }
}

TEST(ColumnLines, SkippedLinesLeaveTheColumnUndefined) {
  for (const char* line : {";Bit_0=4,900,C,%d", "Bit_0=4,9", "Bit_0=,4,900,C,%d", "Bit_0=49000",
                           "Bit_0=4,900", "Bit_0=4,900,Caption", "Bit_0=4,900,C,d"}) {
    const Parsed p = Parse(line);
    EXPECT_TRUE(p.ok) << line;
    EXPECT_EQ(p.d.Columns[4].Defined, 0) << line;
    EXPECT_EQ(p.d.ColumnCount, 0) << line;
  }
}

TEST(ColumnLines, SkippedLineKeepsWhatItStored) {
  // A value of fewer than five characters is skipped before anything is stored.
  EXPECT_EQ(Parse("Byte2=4,,x").d.Columns[4].FieldType, 0);

  const Parsed p = Parse("Byte2=4,,xy");
  ASSERT_TRUE(p.ok);
  const ColumnDef& col = p.d.Columns[4];
  EXPECT_EQ(col.Defined, 0);
  EXPECT_EQ(col.FieldType, 3);
  EXPECT_EQ(col.Position, 2);
  EXPECT_EQ(col.RegisterIndex, 0);
  EXPECT_EQ(col.Width, 777);

  // An earlier complete line keeps the column defined; the later one still changes it.
  const Parsed again = Parse("Word1=6,500,Level,%d\nByte0=6,900,x");
  EXPECT_EQ(again.d.Columns[6].Defined, -1);
  EXPECT_EQ(again.d.Columns[6].FieldType, 3);
  EXPECT_EQ(again.d.Columns[6].Width, 900);
  EXPECT_EQ(again.d.Columns[6].Caption, "Level");
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
}

TEST(ColumnLines, DisplayCodeEndsAtABlankMoreThanOneCharacterAfterThePercent) {
  EXPECT_EQ(Parse("Bit_0=1,,C,%s\\0)Off").d.Columns[1].DisplayCode, "s\\0)Off");
  EXPECT_EQ(Parse("Bit_0=1,,C,%s\\0)Off").d.Columns[1].Defined, -1);  // no list parsed
  EXPECT_EQ(Parse("Bit_0=1,,C,% x").d.Columns[1].DisplayCode, " x");
  EXPECT_EQ(Parse("Bit_0=1,,C,a b%d").d.Columns[1].DisplayCode, "d");
}

TEST(ColumnSections, ErrorTexts) {
  EXPECT_EQ(Parse("Word0=200,800,Big,%d").err, "Reading error in section REGISTER_0");
  EXPECT_EQ(Parse("Word0=-1,800,Big,%d", 2).err, "Reading error in section REGISTER_2");
  EXPECT_EQ(Parse("Bit_0=1,,C,%d\nNote", 4).err, "Reading error in section REGISTER_4");
  EXPECT_EQ(Parse("Bit_0=1,99999999999,C,%d").err, "Reading error in section REGISTER_0");
  EXPECT_EQ(Parse("Bit_0=1,,C,%s )x\\1").err, "Reading error in section REGISTER_0");
  EXPECT_EQ(Parse("Bit_0=1,,C,%s \\1e12)x").err, "Reading error in section REGISTER_0");
  // Column numbers out of range only matter for lines of a known type in range.
  EXPECT_TRUE(Parse("Bits=200,800,Big,%d").ok);
  EXPECT_TRUE(Parse("Word2=200,800,Big,%d").ok);

  const Parsed stopped = Parse("Bit_0=1,,A,%d\nBit_1=300,,B,%d\nBit_2=2,,C,%d");
  EXPECT_FALSE(stopped.ok);
  EXPECT_EQ(DefinedColumns(stopped.d), std::vector<int>{1});
}

TEST(ColumnSections, MissingEmptyAndOversizedSections) {
  TraceDescription d;
  std::string err;
  const ProfileFile file =
      ProfileFile::Parse("[REGISTER_1]\n[REGISTER_3]\na=" + std::string(32763, 'x') + "\n");
  EXPECT_TRUE(ParseRegisterSection(d, file, "REGISTER_", 0, {}, err));
  EXPECT_TRUE(ParseRegisterSection(d, file, "REGISTER_", 1, {}, err));
  EXPECT_FALSE(ParseRegisterSection(d, file, "REGISTER_", 3, {}, err));
  EXPECT_EQ(err, "Too many bytes in the section REGISTER_3");
}

TEST(ValueTexts, EntriesRangesAndDefault) {
  const Parsed p = Parse("Byte2=4,900,Pump state,%s \\0)Off \\1 3 5..7)On \\7..5)X \\)Unknown ");
  ASSERT_TRUE(p.ok);
  const ColumnDef& col = p.d.Columns[4];
  EXPECT_EQ(col.Defined, -1);
  EXPECT_EQ(col.Values, (std::vector<int32_t>{0, 1, 3, 5, 6, 7}));
  EXPECT_EQ(col.ValueTexts, (std::vector<std::string>{"Off", "On", "On", "On", "On", "On"}));
  EXPECT_EQ(col.DefaultText, "Unknown");
}

TEST(ValueTexts, ItemsAndCodes) {
  const Parsed blanks = Parse("Byte0=1,,C,%GM \\1  -2.5 2.5..4)x");
  EXPECT_EQ(blanks.d.Columns[1].Values, (std::vector<int32_t>{1, 0, -2, 2, 4}));
  EXPECT_EQ(blanks.symbolReads, 1);

  const Parsed onlyDefault = Parse("Byte0=1,,C,%s \\)Unknown");
  EXPECT_TRUE(onlyDefault.d.Columns[1].Values.empty());
  EXPECT_EQ(onlyDefault.d.Columns[1].DefaultText, "Unknown");

  const Parsed noBackslash = Parse("Byte0=1,,C,%s 0)Off");
  EXPECT_EQ(noBackslash.d.Columns[1].Defined, 0);

  const Parsed endsEarly = Parse("Byte0=1,,C,%s \\0)Off \\1 On");
  EXPECT_EQ(endsEarly.d.Columns[1].Defined, 0);
  EXPECT_EQ(endsEarly.d.Columns[1].Values, std::vector<int32_t>{0});

  // Other display codes keep no list, and a new list replaces the old one.
  EXPECT_TRUE(Parse("Byte0=1,,C,%d \\0)Off").d.Columns[1].Values.empty());
  const Parsed replaced = Parse("Byte0=1,,C,%s \\0)A \\)D\nByte1=1,,C,%s \\5)B");
  EXPECT_EQ(replaced.d.Columns[1].Values, std::vector<int32_t>{5});
  EXPECT_EQ(replaced.d.Columns[1].DefaultText, "");
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
  TraceDescription d;
  std::string err;
  int reads = 0;
  bool flagSetBeforeRead = false;
  const auto read = [&] {
    ++reads;
    flagSetBeforeRead = d.SymbolFileLoaded;
  };
  const ProfileFile file = ProfileFile::Parse(
      "[REGISTER_0]\nBit_0=1,,A,%d\nBit_1=2,,B,%gs\n[REGISTER_1]\nWord0=3,,C,%Gm \\1)x\n");
  ASSERT_TRUE(ParseRegisterSection(d, file, "REGISTER_", 0, read, err));
  ASSERT_TRUE(ParseRegisterSection(d, file, "REGISTER_", 1, read, err));
  EXPECT_EQ(reads, 1);
  EXPECT_TRUE(flagSetBeforeRead);
  EXPECT_EQ(d.Columns[3].Values, std::vector<int32_t>{1});
}

}  // namespace
}  // namespace vantrel
