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

class cSymbol {
 public:
  // The key of an address: media, one blank, the address in decimal.
  static std::string KeyOf(std::string_view media, int16_t addr);

  // Stores a new symbol under KeyOf(media, addr) and returns it. The first symbol of an
  // address wins: when the key is taken nothing is stored and the result is nullptr.
  colSymbols* Add(std::string_view media, std::string name, std::string comment, int16_t addr);

  // The symbol under `key`, or nullptr; never throws.
  const colSymbols* Find(std::string_view key) const noexcept { return items_.Find(key); }

  // By position (1 .. Count()) or key; a bad position or a missing key throws RuntimeError.
  const colSymbols& Item(int32_t position) const { return items_.Item(position); }
  colSymbols& Item(int32_t position) { return items_.Item(position); }
  const colSymbols& Item(std::string_view key) const { return items_.Item(key); }
  colSymbols& Item(std::string_view key) { return items_.Item(key); }
  const std::string& KeyAt(int32_t position) const { return items_.KeyAt(position); }

  int32_t Count() const noexcept { return items_.Count(); }
  void Remove(int32_t position) { items_.Remove(position); }
  void Remove(std::string_view key) { items_.Remove(key); }

  // The symbols in the order they were added.
  auto begin() const noexcept { return items_.begin(); }
  auto end() const noexcept { return items_.end(); }

 private:
  KeyedCollection<colSymbols> items_;
};

}  // namespace vantrel
