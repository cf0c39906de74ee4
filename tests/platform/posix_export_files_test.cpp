// The tests built into posix_tests run with the POSIX export files.

#include <gtest/gtest.h>

#include "support/export_files_under_test.h"

namespace vantrel {
namespace {

TEST(ExportFiles, ThePosixOnesAreTheOnesUnderTest) {
  EXPECT_EQ(&testing::ExportFilesUnderTest(), &PosixExportFiles());
}

}  // namespace
}  // namespace vantrel
