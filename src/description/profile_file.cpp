#include "description/profile_file.h"

#include <fstream>
#include <iterator>

#include "platform/paths.h"
#include "platform/text.h"
#include "platform/text_file.h"

namespace vantrel {
namespace {

std::string_view TrimBlanksAndTabs(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(" \t");
  return text.substr(first, last - first + 1);
}

std::string_view WithoutQuotes(std::string_view value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    return value.substr(1, value.size() - 2);
  }
  return value;
}

std::string EntryLine(const std::string& key, const std::string& value, bool hasEquals) {
  return hasEquals ? key + "=" + value : key;
}

}  // namespace

ProfileFile ProfileFile::Parse(std::string_view content) {
  ProfileFile file;
  Section* current = nullptr;
  for (const std::string& raw : SplitLines(content)) {
    const std::string_view line = TrimBlanksAndTabs(raw);
    if (line.empty() || line.front() == ';') continue;
    if (line.front() == '[') {
      const size_t close = line.find(']');
      if (close != std::string_view::npos) {
        file.sections_.push_back({std::string(TrimBlanksAndTabs(line.substr(1, close - 1))), {}});
        current = &file.sections_.back();
        continue;
      }
    }
    if (current == nullptr) continue;  // lines before the first section belong to none
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
      current->entries.push_back({std::string(line), {}, false});
    } else {
      current->entries.push_back({std::string(TrimBlanksAndTabs(line.substr(0, equals))),
                                  std::string(TrimBlanksAndTabs(line.substr(equals + 1))), true});
    }
  }
  return file;
}

ProfileFile ProfileFile::Load(std::string_view path) {
  const std::optional<std::string> content = ReadFileBytes(path);
  return content ? Parse(*content) : ProfileFile{};
}

const ProfileFile::Section* ProfileFile::FindSection(std::string_view name) const {
  const std::string_view wanted = TrimBlanksAndTabs(name);
  for (const Section& section : sections_) {
    if (IEquals(section.name, wanted)) return &section;
  }
  return nullptr;
}

std::string ProfileFile::ReadString(std::string_view section, std::string_view key) const {
  const Section* found = FindSection(section);
  if (found == nullptr) return {};
  const std::string_view wanted = TrimBlanksAndTabs(key);
  for (const Entry& entry : found->entries) {
    if (!IEquals(entry.key, wanted)) continue;
    const std::string_view value = CutAtNul(WithoutQuotes(entry.value));
    return std::string(value.substr(0, kMaxProfileValue));
  }
  return {};
}

ProfileFile::SectionLines ProfileFile::ReadSectionLines(std::string_view section) const {
  SectionLines result;
  const Section* found = FindSection(section);
  if (found == nullptr) return result;
  for (const Entry& entry : found->entries) {
    result.lines.push_back(EntryLine(entry.key, entry.value, entry.hasEquals));
    result.characters += result.lines.back().size() + 1;
    if (result.characters >= kSectionDoesNotFit) {
      result.characters = kSectionDoesNotFit;
      return result;
    }
  }
  return result;
}

std::string ProfileFile::ReadSection(std::string_view section) const {
  const SectionLines read = ReadSectionLines(section);
  if (read.characters == 0 || read.characters >= kSectionDoesNotFit) return {};
  std::string joined;
  for (size_t i = 0; i < read.lines.size(); ++i) {
    if (i > 0) joined += '\r';
    joined += read.lines[i];
  }
  return joined;
}

std::string_view CutAtNul(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

std::string AddTrailingSeparator(std::string_view path) {
  std::string out(TrimRightBlanks(path));
  if (out.empty() || !IsSeparator(out.back())) out += '/';
  return out;
}

}  // namespace vantrel
