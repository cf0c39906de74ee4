#include "description/directory_search.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/paths.h"
#include "platform/text.h"

namespace vantrel {

bool WildcardMatch(std::string_view pattern, std::string_view name) {
  // Iterative matching with one backtrack point for the last "*".
  size_t p = 0;
  size_t n = 0;
  size_t star = std::string_view::npos;
  size_t resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == '?' || FoldCase(pattern[p]) == FoldCase(name[n]))) {
      ++p;
      ++n;
    } else if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*')
    ++p;
  return p == pattern.size();
}

std::vector<std::string> FindFiles(std::string_view directory, std::string_view pattern) {
  std::vector<std::string> names;
  std::error_code ec;
  std::filesystem::directory_iterator it(NativePath(directory), ec);
  if (ec) return names;
  for (const auto& entry : it) {
    std::string name = entry.path().filename().string();
    if (WildcardMatch(pattern, name)) names.push_back(std::move(name));
  }
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return ToLower(a) < ToLower(b) || (ToLower(a) == ToLower(b) && a < b);
  });
  return names;
}

void SearchTextFiles(std::string_view directory, std::string_view pattern,
                     const std::function<void(const std::string&)>& read) {
  if (directory.empty()) return;
  for (const std::string& name : FindFiles(directory, pattern)) {
    read(std::string(directory) + name);
  }
}

}  // namespace vantrel
