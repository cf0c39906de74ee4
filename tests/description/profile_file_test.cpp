#include "description/profile_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantrel {
namespace {

TEST(ProfileRead, ValuesAsTheControlReadsThem) {
  struct Case {
    std::string content, section, key, value;
  };
  const std::string quotes =
      "[S]\ndq=\" spaced \"\nsq='single'\nmixed=\"open'\nlone=\"\ncomment=b ; c\neq = x=y\n"
      ";hidden=1\nbare\n";
  const std::string lineEnds = "[A]\r\na=1\rb=2\nc=3\r\n[W\nw=4\n[B] text after\r\nz=5";
  const std::string twice = "[A]\nk=1\nK=2\n[B]\nx=0\n[a]\nk=3\nm=4\n";
  for (const Case& c : std::vector<Case>{
           {"[ Driver\t]\n  TITLE \t=  Pumps North \t\n", "DRIVER ", " title ", "Pumps North"},
           {"[ Driver\t]\n  TITLE \t=  Pumps North \t\n", "Drive", "Title", ""},
           {twice, "A", "k", "1"},
           {twice, "a", "m", ""},  // the later [a] is never seen
           {"[S]\nlong=" + std::string(300, 'v'), "S", "long", std::string(255, 'v')},
           {quotes, "S", "dq", " spaced "},
           {quotes, "S", "sq", "single"},
           {quotes, "S", "mixed", "\"open'"},
           {quotes, "S", "lone", "\""},
           {quotes, "S", "comment", "b ; c"},
           {quotes, "S", "eq", "x=y"},
           {quotes, "S", ";hidden", ""},
           {quotes, "S", "bare", ""},
           {lineEnds, "A", "b", "2"},
           {lineEnds, "A", "c", "3"},
           {lineEnds, "A", "w", "4"},  // "[W" opened no section
           {lineEnds, "B", "z", "5"},
           {"k=0\n[S]\n", "", "k", ""},  // lines before the first section belong to none
           {std::string("[S]\nk=ab\0cd\n", 12), "S", "k", "ab"}}) {
    EXPECT_EQ(ReadProfileString(ProfileFile::Parse(c.content), c.section, c.key), c.value)
        << c.content << " [" << c.section << "] " << c.key;
  }
}

// Lines in file order joined by carriage returns; a section of 32765 characters or more,
// each line counted with its terminator, does not fit and reads as nothing.
TEST(ProfileSection, LinesJoinedUpTo32764Characters) {
  const ProfileFile f = ProfileFile::Parse(
      "[S]\na=1\n; note\n\n  b = 2 \nq=\"x\"\nbare\n[T]\n[s]\nc=3\n[U]\nk=1\nK=2\n");
  EXPECT_EQ(ReadProfileSection(f, "s"), "a=1\rb=2\rq=\"x\"\rbare");
  EXPECT_EQ(ReadProfileSection(f, "T"), "");
  EXPECT_EQ(ReadProfileSection(f, "U"), "k=1\rK=2");
  const auto section = [](size_t lineLength) {
    return ProfileFile::Parse("[S]\na=" + std::string(lineLength - 2, 'x') + "\n");
  };
  EXPECT_EQ(ReadProfileSection(section(32763), "S").size(), 32763U);
  EXPECT_EQ(section(32763).ReadSectionLines("S").characters, 32764U);
  EXPECT_EQ(ReadProfileSection(section(32764), "S"), "");
  EXPECT_EQ(section(32764).ReadSectionLines("S").characters, kSectionDoesNotFit);
}

}  // namespace
}  // namespace vantrel
