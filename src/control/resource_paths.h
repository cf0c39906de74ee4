#pragma once
// The resource directories: the ResourcePath text split at commas, each non-empty entry
// ending in a separator; empty entries stay empty.

#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

std::vector<std::string> SplitResourcePath(std::string_view resourcePath);

}  // namespace vantrel
