// The tests linked into posix_tests run with the POSIX export files installed.

#include <gtest/gtest.h>

#include "vantrel/posix_export_files.h"

namespace vantrel {
namespace {

class PosixExportFilesInstalled : public ::testing::Environment {
 public:
  void SetUp() override { InstallExportFiles(PosixExportFiles()); }
};

[[maybe_unused]] const auto* const installed =
    ::testing::AddGlobalTestEnvironment(new PosixExportFilesInstalled);

TEST(ExportFiles, ThePosixOnesAreInstalled) {
  EXPECT_EQ(&InstalledExportFiles(), &PosixExportFiles());
}

}  // namespace
}  // namespace vantrel
