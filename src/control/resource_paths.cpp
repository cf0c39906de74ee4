#include "control/resource_paths.h"

#include "description/profile_file.h"
#include "platform/text.h"

namespace vantrel {

std::vector<std::string> SplitResourcePath(std::string_view resourcePath) {
  std::vector<std::string> paths;
  if (resourcePath.empty()) return paths;
  for (const std::string_view entry : SplitAt(resourcePath, ','))
    paths.push_back(entry.empty() ? std::string() : AddTrailingSeparator(entry));
  return paths;
}

}  // namespace vantrel
