#pragma once
// The host's property bag: where a control's settings are kept between runs. Values are
// Booleans, integers or texts; a value equal to its default is not stored.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantrel {

using PropertyValue = std::variant<bool, int32_t, std::string>;

class PropertyBag {
 public:
  virtual ~PropertyBag() = default;
  // The stored value, or `defaultValue` when none is stored or it cannot be read as the
  // default's type.
  virtual PropertyValue ReadProperty(std::string_view name,
                                     const PropertyValue& defaultValue) const = 0;
  // Stores the value; a value equal to `defaultValue` removes the entry instead.
  virtual void WriteProperty(std::string_view name, const PropertyValue& value,
                             const PropertyValue& defaultValue) = 0;
};

// A bag in memory, keeping the order in which names were first written.
class MemoryPropertyBag : public PropertyBag {
 public:
  PropertyValue ReadProperty(std::string_view name,
                             const PropertyValue& defaultValue) const override;
  void WriteProperty(std::string_view name, const PropertyValue& value,
                     const PropertyValue& defaultValue) override;

  bool Contains(std::string_view name) const { return Find(name) != nullptr; }
  std::optional<PropertyValue> Stored(std::string_view name) const;
  // The stored entries as texts, in order ("True"/"False" for Booleans).
  const std::vector<std::pair<std::string, std::string>>& Entries() const { return entries_; }
  void SetText(std::string_view name, std::string_view text);

 private:
  const std::string* Find(std::string_view name) const;
  std::vector<std::pair<std::string, std::string>> entries_;
};

struct PropertyFileProblem {
  int line = 0;
  std::string message;
};

// A bag kept in a text file of `Name=Value` lines (UTF-8). Lines that cannot be read are
// reported with their line number and skipped.
class FilePropertyBag : public MemoryPropertyBag {
 public:
  // Reads `path`; a missing file gives an empty bag. Returns false when the file exists but
  // cannot be read.
  bool Load(const std::string& path);
  bool Save(const std::string& path) const;
  const std::vector<PropertyFileProblem>& Problems() const { return problems_; }

 private:
  std::vector<PropertyFileProblem> problems_;
};

}  // namespace vantrel
