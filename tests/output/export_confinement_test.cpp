// Exports write only where the user pointed them: whatever export index the controller
// sends and whatever the clock says, the file lands in the configured folder, and a
// symbolic link in the target's place is never written through (a failed export removes
// its target, which for a link is the link itself).

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "output/fixed_trace.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using testing::FixedTrace;
using testing::ReadBytes;

// The test's folder holds "out" (where exports are configured to go) and "elsewhere/victim",
// a file that must never change.
struct Confined : FixedTrace {
  Confined() {
    fs::create_directories(dir.Path() / "out");
    fs::create_directories(dir.Path() / "elsewhere");
    std::ofstream(Victim()) << "keep";
  }
  std::string Victim() const { return dir.File("elsewhere/victim"); }
  // Every regular file or link under the test's folder, relative to it.
  std::vector<std::string> Files() const {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(dir.Path())) {
      if (!entry.is_directory()) files.push_back(fs::relative(entry.path(), dir.Path()).string());
    }
    return files;
  }
};

TEST(ExportConfinement, EveryNamingModeAndExportIndexStaysInTheConfiguredFolder) {
  for (const int16_t format : {int16_t{0}, int16_t{2}}) {
    for (const int16_t indexFile : {int16_t{0}, int16_t{1}, int16_t{2}}) {
      for (const int32_t exportIndex : {INT32_MIN, 0, INT32_MAX}) {
        Confined t;
        t.exportIndex = exportIndex;
        t.indexFile = indexFile;
        t.Export(format, "out/trace.x");
        const std::string where = "format " + std::to_string(format) + " mode " +
                                  std::to_string(indexFile) + " index " +
                                  std::to_string(exportIndex);
        EXPECT_TRUE(t.result.written) << where;
        int written = 0;
        for (const std::string& file : t.Files()) {
          if (file == "elsewhere/victim") continue;
          ++written;
          EXPECT_EQ(file.rfind("out/trace", 0), 0u) << where << " wrote " << file;
          EXPECT_EQ(file.find('/', 4), std::string::npos) << where << " wrote " << file;
        }
        EXPECT_EQ(written, 1) << where;
        EXPECT_EQ(ReadBytes(t.Victim()), "keep");
      }
    }
  }
}

TEST(ExportConfinement, ALinkInTheTargetsPlaceIsNotWrittenThrough) {
  for (const int16_t format : {int16_t{0}, int16_t{2}}) {
    for (const bool dangling : {false, true}) {
      Confined t;
      const std::string victim = dangling ? t.dir.File("elsewhere/new") : t.Victim();
      fs::create_symlink(victim, t.dir.Path() / "out/trace.x");
      t.Export(format, "out/trace.x");
      const std::string where = "format " + std::to_string(format) + (dangling ? " dangling" : "");
      EXPECT_FALSE(t.result.written) << where;
      EXPECT_EQ(ReadBytes(t.Victim()), "keep") << where;
      EXPECT_FALSE(fs::exists(t.dir.File("elsewhere/new"))) << where;
      EXPECT_EQ(t.result.outcome.text.rfind("ExportExcelFile Error ", 0), 0u)
          << where << ": " << t.result.outcome.text;
    }
  }
}

}  // namespace
}  // namespace vantrel
