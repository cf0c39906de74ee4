#pragma once
// Files of one directory whose names match a wildcard pattern ("*" any run, "?" any one
// character), without regard to case, sorted by name the same way. Not recursive.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

bool WildcardMatch(std::string_view pattern, std::string_view name);
// Names (not paths) of the entries of `directory` matching `pattern`; empty when the
// directory cannot be read.
std::vector<std::string> FindFiles(std::string_view directory, std::string_view pattern);
// Calls `read` with directory + name for every match; nothing for an empty directory.
void SearchTextFiles(std::string_view directory, std::string_view pattern,
                     const std::function<void(const std::string&)>& read);

}  // namespace vantrel
