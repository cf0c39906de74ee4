#pragma once
// Names of controller addresses from the program's symbol file: `colSymbols` is one symbol,
// `cSymbol` the collection, keyed by media, one blank and the address in decimal ("R 100",
// "F 12", "X 7"), compared without regard to case.

#include <cstdint>
#include <string>
#include <string_view>

#include "symbols/keyed_collection.h"

namespace vantrel {

class colSymbols {
 public:
  // The symbol's name behind the names of its enclosing groups ("Pumps.Valves.V1").
  const std::string& Name() const { return name_; }
  void SetName(std::string name) { name_ = std::move(name); }
  // The text after the first ";" of the symbol's line, untrimmed.
  const std::string& Comment() const { return comment_; }
  void SetComment(std::string comment) { comment_ = std::move(comment); }
  int16_t Addr() const { return addr_; }
  void SetAddr(int16_t addr) { addr_ = addr; }

 private:
  std::string name_;
  std::string comment_;
  int16_t addr_ = 0;
};

// Lookups, positions, removal and iteration are the keyed collection's own.
class cSymbol : private KeyedCollection<colSymbols> {
 public:
  // The key of an address: media, one blank, the address in decimal.
  static std::string KeyOf(std::string_view media, int16_t addr);

  // Stores a new symbol under KeyOf(media, addr) and returns it. The first symbol of an
  // address wins: when the key is taken nothing is stored and the result is nullptr.
  colSymbols* Add(std::string_view media, std::string name, std::string comment, int16_t addr);

  using KeyedCollection::begin;
  using KeyedCollection::Count;
  using KeyedCollection::end;
  using KeyedCollection::Find;
  using KeyedCollection::Item;
  using KeyedCollection::KeyAt;
  using KeyedCollection::Remove;
};

}  // namespace vantrel
