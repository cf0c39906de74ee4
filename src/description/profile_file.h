#pragma once
// Profile (INI) files as the control reads them: sections in brackets, key=value lines.
// Section and key names match without regard to case, the first matching section and key
// win, a value reads as at most 255 characters, and a section too big for the reader's
// buffer (32765 characters or more, each line counted with its terminator) reads as not
// fitting. A file is parsed once and every read is answered from memory.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

inline constexpr size_t kMaxProfileValue = 255;
inline constexpr size_t kSectionDoesNotFit = 32765;

class ProfileFile {
 public:
  static ProfileFile Parse(std::string_view content);
  // A file that cannot be read parses as empty: every read of it gives the empty string.
  static ProfileFile Load(std::string_view path);

  // The key's value, trimmed and without enclosing quotes, at most 255 characters; empty
  // for a missing section or key.
  std::string ReadString(std::string_view section, std::string_view key) const;
  // The section's lines joined by carriage returns; empty for a missing section or one that
  // does not fit.
  std::string ReadSection(std::string_view section) const;

  // A section's lines as "key=value" (or the bare line without "="), in file order, and the
  // number of characters a section read would return (kSectionDoesNotFit when too big).
  struct SectionLines {
    std::vector<std::string> lines;
    size_t characters = 0;
  };
  SectionLines ReadSectionLines(std::string_view section) const;

 private:
  struct Entry {
    std::string key;
    std::string value;
    bool hasEquals = false;
  };
  struct Section {
    std::string name;
    std::vector<Entry> entries;
  };
  const Section* FindSection(std::string_view name) const;

  std::vector<Section> sections_;
};

inline std::string ReadProfileString(const ProfileFile& file, std::string_view section,
                                     std::string_view key) {
  return file.ReadString(section, key);
}
inline std::string ReadProfileSection(const ProfileFile& file, std::string_view section) {
  return file.ReadSection(section);
}

// The part of `text` before its first NUL character.
std::string_view CutAtNul(std::string_view text);
// The path without trailing blanks, ending in a directory separator ("/" is added).
std::string AddTrailingSeparator(std::string_view path);

}  // namespace vantrel
