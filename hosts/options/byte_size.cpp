#include "byte_size.h"

#include <charconv>

namespace vantrel::hosts {

std::optional<uint64_t> ParseByteSize(std::string_view text) {
  uint64_t value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end == text.data()) return std::nullopt;
  const std::string_view unit(end, static_cast<size_t>(text.data() + text.size() - end));
  int shift = 0;
  if (unit == "K" || unit == "k") {
    shift = 10;
  } else if (unit == "M" || unit == "m") {
    shift = 20;
  } else if (unit == "G" || unit == "g") {
    shift = 30;
  } else if (!unit.empty()) {
    return std::nullopt;
  }
  if (value > (UINT64_MAX >> shift)) return std::nullopt;
  return value << shift;
}

}  // namespace vantrel::hosts
