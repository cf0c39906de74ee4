#include "symbols/value_texts.h"

namespace vantrel {

std::string cValues::KeyOf(std::string_view appId, std::string_view section, int32_t value) {
  std::string key;
  key.reserve(appId.size() + section.size() + 13);
  key += appId;
  key += '_';
  key += section;
  key += '_';
  key += std::to_string(value);
  return key;
}

void cValues::Add(std::string_view appId, std::string_view section, int32_t value, std::string text,
                  std::string comment) {
  cValue item;
  item.SetValue(value);
  item.SetText(std::move(text));
  item.SetComment(std::move(comment));
  KeyedCollection::Add(KeyOf(appId, section, value), std::move(item));
}

}  // namespace vantrel
