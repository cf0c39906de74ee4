#pragma once
// Reading a text file as lines: CR LF, LF and CR all end a line; the bytes are kept as they
// are (Windows-1252).

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

// The file's lines, or nothing when it cannot be read.
std::optional<std::vector<std::string>> ReadTextLines(std::string_view path);
std::vector<std::string> SplitLines(std::string_view content);

}  // namespace vantrel
