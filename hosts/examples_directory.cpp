#include "vantrel/hosts/examples_directory.h"

#include <filesystem>
#include <system_error>

namespace vantrel::hosts {

std::string ExamplesDirectory() {
  std::error_code ec;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    const std::filesystem::path installed =
        program.parent_path().parent_path() / "share" / "vantrel" / "examples";
    if (std::filesystem::is_regular_file(installed / "PMP1_pumps.vtld", ec)) {
      return installed.string();
    }
  }
  return VANTREL_SOURCE_EXAMPLES_DIR;
}

}  // namespace vantrel::hosts
