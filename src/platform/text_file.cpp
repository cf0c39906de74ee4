#include "platform/text_file.h"

#include <exception>
#include <filesystem>
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

std::optional<std::string> ReadFileBytes(std::string_view path) {
  const std::string native = NativePath(path);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(std::filesystem::status(native, ec))) return std::nullopt;
  try {
    std::ifstream in(native, std::ios::binary);
    if (!in) return std::nullopt;
    std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) return std::nullopt;
    return content;
  } catch (const std::exception&) {  // a read error midway (the file changed under us)
    return std::nullopt;
  }
}

bool IsNonRegularFile(std::string_view path) {
  std::error_code ec;
  const auto status = std::filesystem::status(NativePath(path), ec);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

std::optional<std::vector<std::string>> ReadTextLines(std::string_view path) {
  const std::optional<std::string> content = ReadFileBytes(path);
  if (!content) return std::nullopt;
  return SplitLines(*content);
}

}  // namespace vantrel
