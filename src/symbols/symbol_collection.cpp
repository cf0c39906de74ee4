#include "symbols/symbol_collection.h"

namespace vantrel {

std::string cSymbol::KeyOf(std::string_view media, int16_t addr) {
  std::string key(media);
  key += ' ';
  key += std::to_string(addr);
  return key;
}

colSymbols* cSymbol::Add(std::string_view media, std::string name, std::string comment,
                         int16_t addr) {
  colSymbols symbol;
  symbol.SetName(std::move(name));
  symbol.SetComment(std::move(comment));
  symbol.SetAddr(addr);
  return KeyedCollection::Add(KeyOf(media, addr), std::move(symbol));
}

}  // namespace vantrel
