#include "platform/text_file.h"

#include <fstream>
#include <iterator>

#include "platform/paths.h"

namespace vantrel {

std::vector<std::string> SplitLines(std::string_view content) {
  std::vector<std::string> lines;
  size_t start = 0;
  for (size_t i = 0; i < content.size(); ++i) {
    if (content[i] != '\r' && content[i] != '\n') continue;
    lines.emplace_back(content.substr(start, i - start));
    if (content[i] == '\r' && i + 1 < content.size() && content[i + 1] == '\n') ++i;
    start = i + 1;
  }
  if (start < content.size()) lines.emplace_back(content.substr(start));
  return lines;
}

std::optional<std::vector<std::string>> ReadTextLines(std::string_view path) {
  std::ifstream in(NativePath(path), std::ios::binary);
  if (!in) return std::nullopt;
  const std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) return std::nullopt;
  return SplitLines(content);
}

}  // namespace vantrel
