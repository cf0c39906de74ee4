#include "symbols/symbol_collection.h"

namespace vantrel {

const colSymbols* cSymbol::Add(std::string_view media, std::string name, std::string comment,
                               int16_t addr) {
  colSymbols symbol;
  symbol.SetName(std::move(name));
  symbol.SetComment(std::move(comment));
  symbol.SetAddr(addr);
  const std::string key = std::string(media) + " " + std::to_string(addr);
  items_.Add(key, std::move(symbol));
  return items_.Find(key);
}

}  // namespace vantrel
