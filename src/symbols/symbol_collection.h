#pragma once
// Names of controller addresses from the program's symbol file: `colSymbols` is one symbol,
// `cSymbol` the collection, keyed by media and address ("R 100", "F 12", "X 7").

#include <cstdint>
#include <string>
#include <string_view>

#include "symbols/keyed_collection.h"

namespace vantrel {

class colSymbols {
 public:
  const std::string& Name() const { return name_; }
  void SetName(std::string name) { name_ = std::move(name); }
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
  // Stores the symbol under "<media> <address>"; the first symbol of an address stays.
  const colSymbols* Add(std::string_view media, std::string name, std::string comment,
                        int16_t addr);
  const colSymbols* Find(std::string_view key) const { return items_.Find(key); }
  const colSymbols* Item(int32_t position) const { return items_.At(position); }
  int32_t Count() const { return items_.Count(); }
  bool Remove(std::string_view key) { return items_.Remove(key); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }
  const std::string& KeyAt(int32_t position) const { return items_.KeyAt(position); }

 private:
  KeyedCollection<colSymbols> items_;
};

}  // namespace vantrel
