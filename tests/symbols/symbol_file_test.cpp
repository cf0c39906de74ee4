// Symbol files of the controller's programming tool and the symbol collection they fill.

#include "symbols/symbol_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace vantrel {
namespace {

using Keys = std::vector<std::string>;

Keys KeysOf(const cSymbol& symbols) {
  Keys keys;
  for (int32_t i = 1; i <= symbols.Count(); ++i)
    keys.push_back(symbols.KeyAt(i));
  return keys;
}

struct SymbolFile : ::testing::Test {
  cSymbol Read(const std::string& content) {
    std::ofstream(dir.File("symbols.sy5"), std::ios::binary) << content;
    return ReadSymbolFile(dir.File("symbols.sy5"));
  }
  testing::TempDir dir;
};

TEST_F(SymbolFile, WhichLinesDefineWhichKeys) {
  const std::vector<std::pair<std::string, Keys>> cases = {
      {"Lamp EQU VOL F 12\nIn1 EQU I 3\nOut1 EQU O 33\nReg EQU RAM R 4\nTim EQU T 5\n"
       "Cnt EQU C 1600\nStore EQU DB 4000\nMsg EQU TEXT 7\nMsg2 EQU X 8\nBoth EQU VOL RAM R 9\n"
       "Lower equ R 10\n",
       {"F 12", "I 3", "O 33", "R 4", "T 5", "C 1600", "DB 4000", "X 7", "X 8", "R 9", "R 10"}},
      // Comments, short lines, other media, two blanks, missing words, a leading blank.
      {"; Commented EQU R 1\nab\nFoo EQU K 5\nFoo = R 5\nBar EQU R  200\nGap EQU  R 6\n"
       "NoAddr EQU R\nQualified EQU VOL\n Lead EQU R 7\nKept EQU R 8\n",
       {"R 8"}},
      {"Table EQU R [10] 300\nBlock EQU DB [2] 4001\n", {"R 300", "DB 4001"}},
      {"Half EQU R 2.5\nUp EQU R 3.5\nHex EQU R &H10\nTail EQU R 21abc\n",
       {"R 2", "R 4", "R 16", "R 21"}},
      {"Tab\tEQU\tR\t77\t;\tnote\nSemi EQU R 78 ;a;b\nPair\tEQU R\t\t79\n", {"R 77", "R 78"}},
      {"First EQU R 100 ; one\nSecond EQU R 100 ; two\nLower EQU r 100\n", {"R 100"}},
      // An address beyond 16 bits ends the read keeping what was added.
      {"Ok1 EQU R 1\nBig EQU R 40000\nOk2 EQU R 2\n", {"R 1"}}};
  for (const auto& [content, keys] : cases)
    EXPECT_EQ(KeysOf(Read(content)), keys) << content;
}

// The reference example shows groups, tabs and comments; these are the spellings it leaves out.
TEST_F(SymbolFile, NamesCommentsAndAddresses) {
  const cSymbol symbols = Read(
      "Top EQU R 1 ; one\nSecond EQU R 1 ; two\nMsg EQU TEXT 7\nStore EQU DB 4000\n"
      "Semi EQU R 78 ;a;b\n$group   Valves  more words\nV1 EQU O 33\n$ENDGROUP\n$GROUP Fans\n"
      "F1 EQU F 1\n");
  EXPECT_EQ(symbols.Item("R 1").Name(), "Top");
  EXPECT_EQ(symbols.Item("X 7").Comment(), "");
  EXPECT_EQ(symbols.Item("DB 4000").Addr(), 4000);
  EXPECT_EQ(symbols.Item("R 78").Comment(), "a;b");
  EXPECT_EQ(symbols.Item("O 33").Name(), "Valves.V1");
  EXPECT_EQ(symbols.Item("F 1").Name(), "Valves.Fans.F1");
}

}  // namespace
}  // namespace vantrel
