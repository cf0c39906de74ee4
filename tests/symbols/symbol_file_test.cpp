// Symbol files of the controller's programming tool and the symbol collection they fill.

#include "symbols/symbol_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/runtime_errors.h"
#include "support/temp_dir.h"

namespace vantrel {
namespace {

using testing::ErrorNumberOf;

struct SymbolFileTest : ::testing::Test {
  testing::TempDir dir;

  cSymbol Read(const std::string& content) {
    const std::string path = dir.File("symbols.sy5");
    std::ofstream(path, std::ios::binary) << content;
    return ReadSymbolFile(path);
  }

  static std::vector<std::string> Keys(const cSymbol& symbols) {
    std::vector<std::string> keys;
    for (int32_t i = 1; i <= symbols.Count(); ++i)
      keys.push_back(symbols.KeyAt(i));
    return keys;
  }
};

TEST_F(SymbolFileTest, EveryMediaWordAndQualifier) {
  const cSymbol symbols = Read(
      "Lamp EQU VOL F 12\n"
      "In1 EQU I 3\n"
      "Out1 EQU O 33\n"
      "Reg EQU RAM R 4\n"
      "Tim EQU T 5\n"
      "Cnt EQU C 1600\n"
      "Store EQU DB 4000\n"
      "Msg EQU TEXT 7\n"
      "Msg2 EQU X 8\n"
      "Both EQU VOL RAM R 9\n"
      "Lower equ R 10\n");
  EXPECT_EQ(Keys(symbols), (std::vector<std::string>{"F 12", "I 3", "O 33", "R 4", "T 5", "C 1600",
                                                     "DB 4000", "X 7", "X 8", "R 9", "R 10"}));
  EXPECT_EQ(symbols.Item("X 7").Name(), "Msg");
  EXPECT_EQ(symbols.Item("R 10").Name(), "Lower");
  EXPECT_EQ(symbols.Item("DB 4000").Addr(), 4000);
  EXPECT_EQ(symbols.Item("F 12").Comment(), "");
}

TEST_F(SymbolFileTest, LinesOutsideTheSyntaxArePassedOver) {
  const cSymbol symbols = Read(
      "; Commented EQU R 1\n"
      "ab\n"
      "Foo EQU K 5\n"
      "Foo = R 5\n"
      "Bar EQU R  200\n"
      "Gap EQU  R 6\n"
      "NoAddr EQU R\n"
      "Qualified EQU VOL\n"
      " Lead EQU R 7\n"
      "Kept EQU R 8\n");
  EXPECT_EQ(Keys(symbols), std::vector<std::string>{"R 8"});
}

TEST_F(SymbolFileTest, IndexWordsBeforeTheAddressArePassedOver) {
  const cSymbol symbols = Read("Table EQU R [10] 300\nBlock EQU DB [2] 4001\n");
  EXPECT_EQ(Keys(symbols), (std::vector<std::string>{"R 300", "DB 4001"}));
}

TEST_F(SymbolFileTest, TheAddressIsALeadingNumberRoundedHalfToEven) {
  const cSymbol symbols = Read(
      "Half EQU R 2.5\n"
      "Up EQU R 3.5\n"
      "Hex EQU R &H10\n"
      "Tail EQU R 21abc\n");
  EXPECT_EQ(Keys(symbols), (std::vector<std::string>{"R 2", "R 4", "R 16", "R 21"}));
}

TEST_F(SymbolFileTest, TabsBecomeBlanksAndTheCommentIsKeptAsWritten) {
  const cSymbol symbols = Read(
      "Tab\tEQU\tR\t77\t;\tnote\n"
      "Semi EQU R 78 ;a;b\n"
      "Pair\tEQU R\t\t79\n");
  EXPECT_EQ(Keys(symbols), (std::vector<std::string>{"R 77", "R 78"}));
  EXPECT_EQ(symbols.Item("R 77").Comment(), " note");
  EXPECT_EQ(symbols.Item("R 78").Comment(), "a;b");
}

TEST_F(SymbolFileTest, GroupNamesPrefixTheSymbolsAndAccumulate) {
  const cSymbol symbols = Read(
      "Top EQU R 1\n"
      "$GROUP Pumps\n"
      "$group   Valves  more words\n"
      "V1 EQU O 33\n"
      "$ENDGROUP\n"
      "V2 EQU O 34\n"
      "$ENDGROUP\n"
      "$GROUP Fans\n"
      "F1 EQU F 1\n");
  EXPECT_EQ(symbols.Item("R 1").Name(), "Top");
  EXPECT_EQ(symbols.Item("O 33").Name(), "Pumps.Valves.V1");
  // Ending a group keeps the prefix: names go on accumulating to the end of the file.
  EXPECT_EQ(symbols.Item("O 34").Name(), "Pumps.Valves.V2");
  EXPECT_EQ(symbols.Item("F 1").Name(), "Pumps.Valves.Fans.F1");
}

TEST_F(SymbolFileTest, TheFirstSymbolOfAnAddressWins) {
  const cSymbol symbols = Read("First EQU R 100 ; one\nSecond EQU R 100 ; two\nLower EQU r 100\n");
  ASSERT_EQ(symbols.Count(), 1);
  EXPECT_EQ(symbols.Item("R 100").Name(), "First");
  EXPECT_EQ(symbols.Item("R 100").Comment(), " one");
}

TEST_F(SymbolFileTest, AnAddressBeyond16BitsEndsTheReadKeepingWhatWasAdded) {
  const cSymbol symbols = Read("Ok1 EQU R 1\nBig EQU R 40000\nOk2 EQU R 2\n");
  EXPECT_EQ(Keys(symbols), std::vector<std::string>{"R 1"});
}

TEST_F(SymbolFileTest, NoFileLeavesTheCollectionEmpty) {
  EXPECT_EQ(ReadSymbolFile("").Count(), 0);
  EXPECT_EQ(ReadSymbolFile(dir.File("missing.sy5")).Count(), 0);
  cSymbol kept;
  kept.Add("R", "Old", "", 1);
  ReadSymbolFile(kept, dir.File("missing.sy5"));
  EXPECT_EQ(kept.Count(), 1);
}

TEST(SymbolCollection, PositionsCountFromOneAndBadOnesAreErrors) {
  cSymbol symbols;
  symbols.Add("R", "A", "", 1);
  symbols.Add("R", "B", "", 2);
  EXPECT_EQ(symbols.Item(1).Name(), "A");
  EXPECT_EQ(symbols.Item(2).Name(), "B");
  EXPECT_EQ(ErrorNumberOf([&] { symbols.Item(0); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { symbols.Item(3); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { symbols.Item("R 3"); }), 5);
  EXPECT_EQ(ErrorNumberOf([&] { symbols.Remove(3); }), 9);
  EXPECT_EQ(symbols.Count(), 2);
}

TEST(SymbolCollection, RemovalKeepsTheOrderOfTheRest) {
  cSymbol symbols;
  for (int16_t a = 1; a <= 4; ++a)
    symbols.Add("R", "S" + std::to_string(a), "", a);
  symbols.Remove("r 2");
  symbols.Remove(2);  // now "R 3"
  std::vector<std::string> names;
  for (const colSymbols& s : symbols)
    names.push_back(s.Name());
  EXPECT_EQ(names, (std::vector<std::string>{"S1", "S4"}));
  EXPECT_EQ(symbols.Item("R 4").Name(), "S4");
  EXPECT_EQ(symbols.Find("R 3"), nullptr);
  // A removed key can be used again and comes last.
  symbols.Add("R", "Again", "", 2);
  EXPECT_EQ(symbols.Item(3).Name(), "Again");
  EXPECT_EQ(symbols.KeyAt(3), "R 2");
  EXPECT_EQ(symbols.Item("R 2").Name(), "Again");
}

}  // namespace
}  // namespace vantrel
