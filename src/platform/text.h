#pragma once
// Small text helpers shared by the file readers and the decoder. Texts are narrow strings of
// Windows-1252 bytes; case folding touches ASCII letters only.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

// Inline: these run for most decoded cells and for every keyed lookup.
constexpr char FoldCase(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool IEquals(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (FoldCase(a[i]) != FoldCase(b[i])) return false;
  }
  return true;
}
constexpr bool IStartsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && IEquals(text.substr(0, prefix.size()), prefix);
}
std::string ToLower(std::string_view text);
// Position of the first occurrence of `needle` in `text` without regard to case, or npos.
size_t IFind(std::string_view text, std::string_view needle);

// Trims blanks (spaces only) as the lenient file readers do.
std::string_view TrimBlanks(std::string_view text);
std::string_view TrimLeftBlanks(std::string_view text);
std::string_view TrimRightBlanks(std::string_view text);

// The fields between separators, empty ones included: "a,,b" gives "a", "", "b", and a text
// without the separator is one field.
std::vector<std::string_view> SplitAt(std::string_view text, char separator);

// Decimal text of an integer, without padding.
std::string Decimal(long long value);

}  // namespace vantrel
