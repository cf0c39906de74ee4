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

// Lookups, positions, removal and iteration are the keyed collection's own.
class cValues : private KeyedCollection<cValue> {
 public:
  static std::string KeyOf(std::string_view appId, std::string_view section, int32_t value);

  // Stores the text under KeyOf(appId, section, value); the first text of a key stays and
  // later ones are ignored silently.
  void Add(std::string_view appId, std::string_view section, int32_t value, std::string text,
           std::string comment);

  using KeyedCollection::begin;
  using KeyedCollection::Count;
  using KeyedCollection::end;
  using KeyedCollection::Find;
  using KeyedCollection::Item;
  using KeyedCollection::KeyAt;
  using KeyedCollection::Remove;
};

}  // namespace vantrel
