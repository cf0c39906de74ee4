#pragma once
// Small text helpers shared by the file readers and the decoder. Texts are narrow strings of
// Windows-1252 bytes; case folding touches ASCII letters only.

#include <string>
#include <string_view>

namespace vantrel {

char FoldCase(char c);
std::string ToLower(std::string_view text);
bool IEquals(std::string_view a, std::string_view b);
bool IStartsWith(std::string_view text, std::string_view prefix);
// Position of the first occurrence of `needle` in `text` without regard to case, or npos.
size_t IFind(std::string_view text, std::string_view needle);

// Trims blanks (spaces only) as the lenient file readers do.
std::string_view TrimBlanks(std::string_view text);
std::string_view TrimLeftBlanks(std::string_view text);
std::string_view TrimRightBlanks(std::string_view text);

// Decimal text of an integer, without padding.
std::string Decimal(long long value);

}  // namespace vantrel
