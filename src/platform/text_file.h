#pragma once
// Reading a text file as lines: CR LF, LF and CR all end a line; the bytes are kept as they
// are (Windows-1252).

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

// The bytes of the regular file at `path`, or nothing when it is missing, cannot be read or
// is no regular file: a directory, device or pipe is never opened, so that reading one can
// neither fail midway nor wait forever.
std::optional<std::string> ReadFileBytes(std::string_view path);
// True when something other than a regular file (a directory, device, pipe) is at `path`.
bool IsNonRegularFile(std::string_view path);
// The file's lines, or nothing when it cannot be read.
std::optional<std::vector<std::string>> ReadTextLines(std::string_view path);
std::vector<std::string> SplitLines(std::string_view content);

}  // namespace vantrel
