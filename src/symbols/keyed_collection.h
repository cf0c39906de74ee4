#pragma once
// An insertion-ordered collection of items under text keys compared without regard to case;
// adding under a key already present keeps the first item.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/text.h"

namespace vantrel {

template <typename Item>
class KeyedCollection {
 public:
  // False (and nothing stored) when the key is taken.
  bool Add(std::string_view key, Item item) {
    auto [it, inserted] = index_.try_emplace(ToLower(key), items_.size());
    if (!inserted) return false;
    items_.push_back(std::move(item));
    keys_.emplace_back(key);
    return true;
  }
  const Item* Find(std::string_view key) const {
    auto it = index_.find(ToLower(key));
    return it == index_.end() ? nullptr : &items_[it->second];
  }
  bool Remove(std::string_view key) {
    auto it = index_.find(ToLower(key));
    if (it == index_.end()) return false;
    const size_t position = it->second;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(position));
    keys_.erase(keys_.begin() + static_cast<std::ptrdiff_t>(position));
    index_.erase(it);
    for (auto& entry : index_) {
      if (entry.second > position) --entry.second;
    }
    return true;
  }
  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  // Items by position, from 1 as the platform's collections count.
  const Item* At(int32_t position) const {
    return position >= 1 && position <= Count() ? &items_[static_cast<size_t>(position - 1)]
                                                : nullptr;
  }
  const std::string& KeyAt(int32_t position) const {
    return keys_[static_cast<size_t>(position - 1)];
  }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  std::vector<Item> items_;
  std::vector<std::string> keys_;
  std::unordered_map<std::string, size_t> index_;
};

}  // namespace vantrel
