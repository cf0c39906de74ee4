#pragma once
// Paths as the control receives them may use "\" or "/" as directory separators (files and
// settings written on other platforms use "\"). Both are accepted; a separator we add is "/".

#include <string>
#include <string_view>

namespace vantrel {

bool IsSeparator(char c);
// The path with every "\" turned into "/", ready for the file system.
std::string NativePath(std::string_view path);
bool FileExists(std::string_view path);
bool DirectoryExists(std::string_view path);

}  // namespace vantrel
