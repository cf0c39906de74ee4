#include "symbols/value_texts.h"

namespace vantrel {

void cValues::Add(std::string_view appId, std::string_view section, int32_t value, std::string text,
                  std::string comment) {
  cValue item;
  item.SetValue(value);
  item.SetText(std::move(text));
  item.SetComment(std::move(comment));
  std::string key(appId);
  ((key += '_') += section) += '_';
  key += std::to_string(value);
  items_.Add(key, std::move(item));
}

}  // namespace vantrel
