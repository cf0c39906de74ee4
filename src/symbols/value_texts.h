#pragma once
// Texts and comments of coded values per controller application: `cValue` is one text,
// `cValues` the collection keyed "<application>_<section>_<value>" ("3_State_12",
// "_Application_0").
//
// Keys compare without regard to case, as the platform's keyed collection does: a section
// header [state] in a value-text file serves a column captioned "State".

#include <cstdint>
#include <string>
#include <string_view>

#include "symbols/keyed_collection.h"

namespace vantrel {

class cValue {
 public:
  int32_t Value() const { return value_; }
  void SetValue(int32_t value) { value_ = value; }
  const std::string& Text() const { return text_; }
  void SetText(std::string text) { text_ = std::move(text); }
  const std::string& Comment() const { return comment_; }
  void SetComment(std::string comment) { comment_ = std::move(comment); }

 private:
  int32_t value_ = 0;
  std::string text_;
  std::string comment_;
};

class cValues {
 public:
  static std::string KeyOf(std::string_view appId, std::string_view section, int32_t value);

  // Stores the text under KeyOf(appId, section, value); the first text of a key stays and
  // later ones are ignored silently.
  void Add(std::string_view appId, std::string_view section, int32_t value, std::string text,
           std::string comment);

  // The text under `key`, or nullptr; never throws.
  const cValue* Find(std::string_view key) const noexcept { return items_.Find(key); }

  // By position (1 .. Count()) or key; a bad position or a missing key throws RuntimeError.
  const cValue& Item(int32_t position) const { return items_.Item(position); }
  cValue& Item(int32_t position) { return items_.Item(position); }
  const cValue& Item(std::string_view key) const { return items_.Item(key); }
  cValue& Item(std::string_view key) { return items_.Item(key); }
  const std::string& KeyAt(int32_t position) const { return items_.KeyAt(position); }

  int32_t Count() const noexcept { return items_.Count(); }
  void Remove(int32_t position) { items_.Remove(position); }
  void Remove(std::string_view key) { items_.Remove(key); }

  // The texts in the order they were added.
  auto begin() const noexcept { return items_.begin(); }
  auto end() const noexcept { return items_.end(); }

 private:
  KeyedCollection<cValue> items_;
};

}  // namespace vantrel
