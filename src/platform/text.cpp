#include "platform/text.h"

namespace vantrel {

std::string ToLower(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    c = FoldCase(c);
  return out;
}

size_t IFind(std::string_view text, std::string_view needle) {
  if (needle.size() > text.size()) return std::string_view::npos;
  for (size_t i = 0; i + needle.size() <= text.size(); ++i) {
    if (IEquals(text.substr(i, needle.size()), needle)) return i;
  }
  return std::string_view::npos;
}

std::string_view TrimLeftBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view{} : text.substr(first);
}

std::string_view TrimRightBlanks(std::string_view text) {
  const size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string_view{} : text.substr(0, last + 1);
}

std::string_view TrimBlanks(std::string_view text) {
  return TrimRightBlanks(TrimLeftBlanks(text));
}

std::vector<std::string_view> SplitAt(std::string_view text, char separator) {
  std::vector<std::string_view> fields;
  size_t start = 0;
  for (;;) {
    const size_t end = text.find(separator, start);
    fields.push_back(text.substr(start, end - start));
    if (end == std::string_view::npos) return fields;
    start = end + 1;
  }
}

std::string Decimal(long long value) {
  return std::to_string(value);
}

}  // namespace vantrel
