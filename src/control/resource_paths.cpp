#include "control/resource_paths.h"

#include "description/profile_file.h"

namespace vantrel {

std::vector<std::string> SplitResourcePath(std::string_view resourcePath) {
  std::vector<std::string> paths;
  if (resourcePath.empty()) return paths;
  size_t start = 0;
  for (;;) {
    const size_t comma = resourcePath.find(',', start);
    const std::string_view entry = resourcePath.substr(start, comma - start);
    paths.push_back(entry.empty() ? std::string() : AddTrailingSeparator(entry));
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  return paths;
}

}  // namespace vantrel
