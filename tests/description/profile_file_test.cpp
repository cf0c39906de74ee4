#include "description/profile_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "description/description_files.h"

namespace vantrel {
namespace {

TEST(ProfileRead, ValuesAsTheControlReadsThem) {
  struct Case {
    std::string content, section, key, value;
  };
  const std::string quotes =
      "[S]\ndq=\" spaced \"\nsq='single'\nmixed=\"open'\nlone=\"\ncomment=b ; c\neq = x=y\n"
      ";hidden=1\nempty=\nbare\n";
  const std::string lineEnds = "[A]\r\na=1\rb=2\nc=3\r\n[W\nw=4\n[B] text after\r\nz=5";
  const std::string twice = "[A]\nk=1\nK=2\n[B]\nx=0\n[a]\nk=3\nm=4\n";
  for (const Case& c : std::vector<Case>{
           {"[ Driver\t]\n  TITLE \t=  Pumps North \t\n", "driver", " title ", "Pumps North"},
           {"[ Driver\t]\n  TITLE \t=  Pumps North \t\n", "DRIVER ", "Title", "Pumps North"},
           {"[ Driver\t]\n  TITLE \t=  Pumps North \t\n", "Drive", "Title", ""},
           {twice, "A", "k", "1"},
           {twice, "a", "m", ""},  // the later [a] is never seen
           {"[S]\nlong=" + std::string(300, 'v'), "S", "long", std::string(255, 'v')},
           {"[S]\nv=" + std::string(255, 'w'), "S", "v", std::string(255, 'w')},
           {quotes, "S", "dq", " spaced "},
           {quotes, "S", "sq", "single"},
           {quotes, "S", "mixed", "\"open'"},
           {quotes, "S", "lone", "\""},
           {quotes, "S", "comment", "b ; c"},
           {quotes, "S", "eq", "x=y"},
           {quotes, "S", ";hidden", ""},
           {quotes, "S", "empty", ""},
           {quotes, "S", "bare", ""},
           {quotes, "T", "dq", ""},
           {lineEnds, "A", "a", "1"},
           {lineEnds, "A", "b", "2"},
           {lineEnds, "A", "c", "3"},
           {lineEnds, "A", "w", "4"},  // "[W" opened no section
           {lineEnds, "W", "w", ""},
           {lineEnds, "B", "z", "5"},
           {"k=0\n[S]\n", "", "k", ""},  // lines before the first section belong to none
           {std::string("[S]\nk=ab\0cd\n", 12), "S", "k", "ab"}}) {
    EXPECT_EQ(ReadProfileString(ProfileFile::Parse(c.content), c.section, c.key), c.value)
        << c.content << " [" << c.section << "] " << c.key;
  }
}

TEST(ProfileSection, LinesInFileOrderJoinedByCarriageReturns) {
  const ProfileFile f = ProfileFile::Parse(
      "[S]\na=1\n; note\n\n  b = 2 \nq=\"x\"\nbare\n[T]\n[s]\nc=3\n[U]\nk=1\nK=2\n");
  EXPECT_EQ(ReadProfileSection(f, "s"), "a=1\rb=2\rq=\"x\"\rbare");
  EXPECT_EQ(ReadProfileSection(f, "T"), "");
  EXPECT_EQ(ReadProfileSection(f, "V"), "");
  EXPECT_EQ(ReadProfileSection(f, "U"), "k=1\rK=2");
}

TEST(ProfileSection, DoesNotFitFrom32765Characters) {
  // Each line counts with its terminator: one line of 32763 characters is 32764.
  const auto section = [](size_t lineLength) {
    return ProfileFile::Parse("[S]\na=" + std::string(lineLength - 2, 'x') + "\n");
  };
  const ProfileFile fits = section(32763);
  EXPECT_EQ(ReadProfileSection(fits, "S").size(), 32763U);
  EXPECT_EQ(fits.ReadSectionLines("S").characters, 32764U);

  const ProfileFile tooBig = section(32764);
  EXPECT_EQ(ReadProfileSection(tooBig, "S"), "");
  EXPECT_EQ(tooBig.ReadSectionLines("S").characters, kSectionDoesNotFit);

  // Counted over several lines the same way, and no further once the section does not fit:
  // 6 lines of 6552 characters plus terminators.
  std::string many = "[S]\n";
  for (int i = 0; i < 6; ++i)
    many += "k" + std::to_string(i) + "=" + std::string(6549, 'y') + "\n";
  EXPECT_EQ(ProfileFile::Parse(many).ReadSectionLines("S").characters, kSectionDoesNotFit);
}

TEST(ProfileFileLoad, ReadsTheFileOnceAndAMissingFileAsEmpty) {
  testing::DescriptionFiles files;
  const std::string path = files.Write("a.ini", "[S]\r\nk=first\r\n");
  const ProfileFile f = ProfileFile::Load(path);
  files.Write("a.ini", "[S]\r\nk=second\r\n");
  EXPECT_EQ(ReadProfileString(f, "S", "k"), "first");
  EXPECT_EQ(ReadProfileSection(ProfileFile::Load(files.Path("none.ini")), "S"), "");
}

TEST(PathHelpers, TrailingSeparatorAndNul) {
  EXPECT_EQ(AddTrailingSeparator("C:\\data  "), "C:\\data/");
  EXPECT_EQ(AddTrailingSeparator("C:/data/"), "C:/data/");
  EXPECT_EQ(AddTrailingSeparator("C:\\data\\ "), "C:\\data\\");
  EXPECT_EQ(AddTrailingSeparator(""), "/");
  EXPECT_EQ(CutAtNul(std::string_view("ab\0cd", 5)), "ab");
  EXPECT_EQ(CutAtNul("abc"), "abc");
}

}  // namespace
}  // namespace vantrel
