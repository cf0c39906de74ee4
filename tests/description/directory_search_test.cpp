#include "description/directory_search.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "description/description_files.h"

namespace vantrel {
namespace {

using Names = std::vector<std::string>;

TEST(DirectorySearch, MatchesWithoutCaseSortedByNameNotRecursive) {
  testing::DescriptionFiles files;
  for (const char* name : {"b.TXT", "A.txt", "C.txt", "ab.txt", "x.dat", "sub/d.txt"})
    files.Write(name, "x");
  const std::string dir = files.Root().string() + "/";
  EXPECT_EQ(FindFiles(dir, "*.txt"), (Names{"A.txt", "ab.txt", "b.TXT", "C.txt"}));
  EXPECT_EQ(FindFiles(dir, "?.TXT"), (Names{"A.txt", "b.TXT", "C.txt"}));
  EXPECT_EQ(FindFiles(dir, "a*"), (Names{"A.txt", "ab.txt"}));
  EXPECT_EQ(FindFiles(dir, "s*"), Names{"sub"});  // directories are passed on
  EXPECT_EQ(FindFiles(dir, "*.none"), Names{});
  EXPECT_EQ(FindFiles(dir + "missing/", "*"), Names{});
  Names read;
  SearchTextFiles(dir, "?.TXT", [&](const std::string& path) { read.push_back(path); });
  EXPECT_EQ(read, (Names{dir + "A.txt", dir + "b.TXT", dir + "C.txt"}));
}

TEST(Wildcard, StarsAndQuestionMarks) {
  EXPECT_TRUE(WildcardMatch("*", ""));
  EXPECT_TRUE(WildcardMatch("PMP1*.vtld", "pmp1_pumps.VTLD"));
  EXPECT_TRUE(WildcardMatch("a*b*c", "aXbYbZc"));
  EXPECT_FALSE(WildcardMatch("a?c", "ac"));
  EXPECT_FALSE(WildcardMatch("*.vtl", "x.vtld"));
  EXPECT_FALSE(WildcardMatch("a*b", "aXbY"));
  EXPECT_FALSE(WildcardMatch("", "a"));
}

}  // namespace
}  // namespace vantrel
