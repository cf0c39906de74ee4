#include "vantrel/property_bag.h"

#include <fstream>
#include <sstream>

#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "vantrel/encoding.h"

namespace vantrel {
namespace {

std::string ToText(const PropertyValue& value) {
  if (const bool* b = std::get_if<bool>(&value)) return *b ? "True" : "False";
  if (const int32_t* i = std::get_if<int32_t>(&value)) return std::to_string(*i);
  return std::get<std::string>(value);
}

std::optional<bool> ParseBool(std::string_view text) {
  const std::string_view t = TrimBlanks(text);
  if (IEquals(t, "true") || t == "-1" || t == "1") return true;
  if (IEquals(t, "false") || t == "0") return false;
  return std::nullopt;
}

std::optional<int32_t> ParseInt(std::string_view text) {
  if (!IsNumeric(text)) return std::nullopt;
  try {
    return RoundToInt32(Val(text));
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

// Line breaks and '%' are the only characters a value line cannot hold as they are.
std::string EscapeValue(std::string_view utf8) {
  std::string out;
  for (char c : utf8) {
    if (c == '%')
      out += "%25";
    else if (c == '\r')
      out += "%0D";
    else if (c == '\n')
      out += "%0A";
    else
      out.push_back(c);
  }
  return out;
}

std::optional<std::string> UnescapeValue(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      out.push_back(text[i]);
      continue;
    }
    const std::string_view code = text.substr(i + 1, 2);
    if (code == "25")
      out.push_back('%');
    else if (code == "0D" || code == "0d")
      out.push_back('\r');
    else if (code == "0A" || code == "0a")
      out.push_back('\n');
    else
      return std::nullopt;
    i += 2;
  }
  return out;
}

bool IsValidName(std::string_view name) {
  if (name.empty()) return false;
  for (char c : name) {
    const bool ok =
        (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
    if (!ok) return false;
  }
  return true;
}

}  // namespace

const std::string* MemoryPropertyBag::Find(std::string_view name) const {
  for (const auto& [key, text] : entries_) {
    if (IEquals(key, name)) return &text;
  }
  return nullptr;
}

std::optional<PropertyValue> MemoryPropertyBag::Stored(std::string_view name) const {
  const std::string* text = Find(name);
  if (text == nullptr) return std::nullopt;
  return *text;
}

PropertyValue MemoryPropertyBag::ReadProperty(std::string_view name,
                                              const PropertyValue& defaultValue) const {
  const std::string* text = Find(name);
  if (text == nullptr) return defaultValue;
  if (std::holds_alternative<bool>(defaultValue)) {
    if (auto b = ParseBool(*text)) return *b;
    return defaultValue;
  }
  if (std::holds_alternative<int32_t>(defaultValue)) {
    if (auto i = ParseInt(*text)) return *i;
    return defaultValue;
  }
  return *text;
}

void MemoryPropertyBag::WriteProperty(std::string_view name, const PropertyValue& value,
                                      const PropertyValue& defaultValue) {
  if (value == defaultValue) {
    std::erase_if(entries_, [&](const auto& e) { return IEquals(e.first, name); });
    return;
  }
  SetText(name, ToText(value));
}

void MemoryPropertyBag::SetText(std::string_view name, std::string_view text) {
  for (auto& [key, stored] : entries_) {
    if (IEquals(key, name)) {
      stored = text;
      return;
    }
  }
  entries_.emplace_back(std::string(name), std::string(text));
}

bool FilePropertyBag::Load(const std::string& path) {
  problems_.clear();
  std::ifstream in(path, std::ios::binary);
  if (!in) return !FileExists(path);  // a missing file is an empty bag
  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::string_view trimmed = TrimBlanks(line);
    if (trimmed.empty() || trimmed.front() == '#' || trimmed.front() == ';') continue;
    const size_t equals = line.find('=');
    if (equals == std::string::npos) {
      problems_.push_back({number, "expected Name=Value"});
      continue;
    }
    const std::string_view name = TrimBlanks(std::string_view(line).substr(0, equals));
    if (!IsValidName(name)) {
      problems_.push_back({number, "invalid property name '" + std::string(name) + "'"});
      continue;
    }
    const auto value = UnescapeValue(std::string_view(line).substr(equals + 1));
    if (!value) {
      problems_.push_back({number, "invalid %-escape in the value of " + std::string(name)});
      continue;
    }
    SetText(name, Utf8ToCp1252(*value));
  }
  return !in.bad();
}

bool FilePropertyBag::Save(const std::string& path) const {
  std::ostringstream out;
  out << "# Vantrel control settings: Name=Value, UTF-8; values equal to their default are "
         "not stored.\n";
  for (const auto& [name, text] : Entries()) {
    out << name << '=' << EscapeValue(Cp1252ToUtf8(text)) << '\n';
  }
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << out.str();
  return static_cast<bool>(file.flush());
}

}  // namespace vantrel
