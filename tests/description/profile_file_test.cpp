#include "description/profile_file.h"

#include <gtest/gtest.h>

#include <string>

#include "description/description_files.h"

namespace vantrel {
namespace {

TEST(ProfileRead, NamesMatchWithoutCaseOrSurroundingBlanks) {
  const ProfileFile f = ProfileFile::Parse("[ Driver\t]\n  TITLE \t=  Pumps North \t\n");
  EXPECT_EQ(ReadProfileString(f, "driver", " title "), "Pumps North");
  EXPECT_EQ(ReadProfileString(f, "DRIVER ", "Title"), "Pumps North");
  EXPECT_EQ(ReadProfileString(f, "Drive", "Title"), "");
}

TEST(ProfileRead, FirstSectionAndFirstKeyWin) {
  const ProfileFile f = ProfileFile::Parse("[A]\nk=1\nK=2\n[B]\nx=0\n[a]\nk=3\nm=4\n");
  EXPECT_EQ(ReadProfileString(f, "A", "k"), "1");
  EXPECT_EQ(ReadProfileString(f, "a", "m"), "");  // the later [a] is never seen
  EXPECT_EQ(ReadProfileSection(f, "A"), "k=1\rK=2");
}

TEST(ProfileRead, ValuesAreCutAt255Characters) {
  const std::string longValue(300, 'v');
  const ProfileFile f =
      ProfileFile::Parse("[S]\nlong=" + longValue + "\nshort=" + std::string(255, 'w') + "\n");
  EXPECT_EQ(ReadProfileString(f, "S", "long"), std::string(255, 'v'));
  EXPECT_EQ(ReadProfileString(f, "S", "short"), std::string(255, 'w'));
}

TEST(ProfileRead, EmptyValueAbsentKeyAndAbsentSectionAllReadEmpty) {
  const ProfileFile f = ProfileFile::Parse("[S]\nkey=\nbare\n");
  EXPECT_EQ(ReadProfileString(f, "S", "key"), "");
  EXPECT_EQ(ReadProfileString(f, "S", "bare"), "");
  EXPECT_EQ(ReadProfileString(f, "S", "other"), "");
  EXPECT_EQ(ReadProfileString(f, "T", "key"), "");
  EXPECT_EQ(ReadProfileString(ProfileFile::Load("/nonexistent/x.ini"), "S", "key"), "");
}

TEST(ProfileRead, QuotesEqualsAndSemicolons) {
  const ProfileFile f = ProfileFile::Parse(
      "[S]\n"
      "dq=\" spaced \"\n"
      "sq='single'\n"
      "mixed=\"open'\n"
      "lone=\"\n"
      "comment=b ; c\n"
      "eq = x=y\n"
      ";hidden=1\n");
  EXPECT_EQ(ReadProfileString(f, "S", "dq"), " spaced ");
  EXPECT_EQ(ReadProfileString(f, "S", "sq"), "single");
  EXPECT_EQ(ReadProfileString(f, "S", "mixed"), "\"open'");
  EXPECT_EQ(ReadProfileString(f, "S", "lone"), "\"");
  EXPECT_EQ(ReadProfileString(f, "S", "comment"), "b ; c");
  EXPECT_EQ(ReadProfileString(f, "S", "eq"), "x=y");
  EXPECT_EQ(ReadProfileString(f, "S", ";hidden"), "");
  // A section read keeps the quotes.
  EXPECT_EQ(ReadProfileSection(f, "S"),
            "dq=\" spaced \"\rsq='single'\rmixed=\"open'\rlone=\"\rcomment=b ; c\req=x=y");
}

TEST(ProfileRead, AllThreeLineEndsAndUnclosedBrackets) {
  const ProfileFile f =
      ProfileFile::Parse("[A]\r\na=1\rb=2\nc=3\r\n[W\nw=4\n[B] text after\r\nz=5");
  EXPECT_EQ(ReadProfileString(f, "A", "a"), "1");
  EXPECT_EQ(ReadProfileString(f, "A", "b"), "2");
  EXPECT_EQ(ReadProfileString(f, "A", "c"), "3");
  EXPECT_EQ(ReadProfileString(f, "A", "w"), "4");  // "[W" opened no section
  EXPECT_EQ(ReadProfileString(f, "W", "w"), "");
  EXPECT_EQ(ReadProfileString(f, "B", "z"), "5");
}

TEST(ProfileSection, LinesInFileOrderJoinedByCarriageReturns) {
  const ProfileFile f = ProfileFile::Parse("[S]\na=1\n; note\n\n  b = 2 \n[T]\n");
  EXPECT_EQ(ReadProfileSection(f, "s"), "a=1\rb=2");
  EXPECT_EQ(ReadProfileSection(f, "T"), "");
  EXPECT_EQ(ReadProfileSection(f, "U"), "");
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

  // Counted over several lines the same way: 5 lines of 6552 characters plus terminators.
  std::string many = "[S]\n";
  for (int i = 0; i < 5; ++i)
    many += "k" + std::to_string(i) + "=" + std::string(6549, 'y') + "\n";
  EXPECT_EQ(ProfileFile::Parse(many).ReadSectionLines("S").characters, kSectionDoesNotFit);
}

TEST(ProfileFileLoad, ReadsTheFileOnce) {
  testing::DescriptionFiles files;
  const std::string path = files.Write("a.ini", "[S]\r\nk=first\r\n");
  const ProfileFile f = ProfileFile::Load(path);
  files.Write("a.ini", "[S]\r\nk=second\r\n");
  EXPECT_EQ(ReadProfileString(f, "S", "k"), "first");
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
