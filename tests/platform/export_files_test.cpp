// An export file is never reached through a symbolic link, and a staged file either takes
// its target's place or disappears, whichever ExportFiles the tests run with (the standard one
// here, the POSIX one where posix_tests builds this file). The exports' own tests check the same
// through whole exports; these check what those cannot reach: every open mode, two stagings of
// one target at once, and a staging abandoned half-way.

#include "platform/export_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/export_files_under_test.h"
#include "support/temp_dir.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using testing::ExportFilesUnderTest;
using testing::TempDir;

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(ExportFiles, NoModeOpensThroughALink) {
  for (const ExportOpen how :
       {ExportOpen::KeepContents, ExportOpen::Create, ExportOpen::Truncate}) {
    for (const bool dangling : {false, true}) {
      TempDir dir;
      std::ofstream(dir.File("victim")) << "keep";
      fs::create_symlink(dir.File(dangling ? "new" : "victim"), dir.File("link"));
      errno = 0;
      EXPECT_EQ(OpenExportFile(ExportFilesUnderTest(), dir.File("link"), how), nullptr)
          << static_cast<int>(how);
      EXPECT_EQ(errno, ELOOP);
      EXPECT_EQ(ReadBytes(dir.File("victim")), "keep");
      EXPECT_FALSE(fs::exists(dir.File("new")));
    }
  }
}

TEST(ExportFiles, StagingsOfOneTargetAreApartAndAnAbandonedOneDisappears) {
  TempDir dir;
  const std::string target = dir.File("trace.xlsx");
  {
    StagedFile first(ExportFilesUnderTest(), target);
    StagedFile second(ExportFilesUnderTest(), target);
    ASSERT_TRUE(first.Ready() && second.Ready()) << first.Error() << second.Error();
    EXPECT_NE(first.Path(), second.Path());
    EXPECT_EQ(fs::path(first.Path()).parent_path(), dir.Path());
    std::ofstream(second.Path()) << "second";
    ASSERT_TRUE(second.Commit()) << second.Error();
  }
  EXPECT_EQ(ReadBytes(target), "second");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace vantrel
