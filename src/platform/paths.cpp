#include "platform/paths.h"

#include <filesystem>
#include <system_error>

namespace vantrel {

bool IsSeparator(char c) {
  return c == '/' || c == '\\';
}

std::string NativePath(std::string_view path) {
  std::string out(path);
  for (char& c : out) {
    if (c == '\\') c = '/';
  }
  return out;
}

bool FileExists(std::string_view path) {
  std::error_code ec;
  return !path.empty() && std::filesystem::is_regular_file(NativePath(path), ec);
}

bool DirectoryExists(std::string_view path) {
  std::error_code ec;
  return !path.empty() && std::filesystem::is_directory(NativePath(path), ec);
}

}  // namespace vantrel
