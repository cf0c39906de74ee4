#pragma once
// Texts and comments of coded values per controller application: `cValue` is one text,
// `cValues` the collection keyed "<application>_<section>_<value>" ("3_State_12").

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
  // The first text of a key stays; later ones are ignored.
  void Add(std::string_view appId, std::string_view section, int32_t value, std::string text,
           std::string comment);
  const cValue* Find(std::string_view key) const { return items_.Find(key); }
  const cValue* Item(int32_t position) const { return items_.At(position); }
  int32_t Count() const { return items_.Count(); }
  bool Remove(std::string_view key) { return items_.Remove(key); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }
  const std::string& KeyAt(int32_t position) const { return items_.KeyAt(position); }

 private:
  KeyedCollection<cValue> items_;
};

}  // namespace vantrel
