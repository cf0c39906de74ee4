#pragma once
// The words that name the field types 1 to 6 (Bit, Nible, Byte, Word, Long, Strg) in user
// buffer files, exports, histories and the command line.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantrel {

inline constexpr std::array<std::string_view, 6> kFieldTypeWords = {"Bit",  "Nible", "Byte",
                                                                    "Word", "Long",  "Strg"};

// The word of field type `type`; the number itself for a type without one.
inline std::string FieldTypeWord(int16_t type) {
  return type >= 1 && type <= 6 ? std::string(kFieldTypeWords[static_cast<size_t>(type - 1)])
                                : std::to_string(type);
}

// The field type `word` names exactly, 0 when it names none.
inline int16_t FieldTypeOfWord(std::string_view word) {
  for (size_t i = 0; i < kFieldTypeWords.size(); ++i) {
    if (word == kFieldTypeWords[i]) return static_cast<int16_t>(i + 1);
  }
  return 0;
}

}  // namespace vantrel
