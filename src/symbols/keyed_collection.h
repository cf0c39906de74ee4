#pragma once
// An insertion-ordered collection of items under text keys compared without regard to case
// (ASCII letters folded, as FoldCase does), with the behaviour of the platform's keyed
// collection: adding under a key already present stores nothing, positions count from 1,
// and asking for a missing position or key is a run-time error.
//
// Lookups go through a hash map that hashes and compares keys case-insensitively in place,
// so finding an item allocates nothing. Items live in a deque: a reference to an item stays
// valid while later items are added (only a removal moves items).

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/runtime_error.h"
#include "platform/text.h"

namespace vantrel {

namespace keyed_collection_detail {

struct CaseInsensitiveHash {
  using is_transparent = void;
  size_t operator()(std::string_view key) const noexcept {
    // FNV-1a over the folded bytes.
    uint64_t hash = 14695981039346656037ULL;
    for (const char c : key) {
      hash ^= static_cast<unsigned char>(FoldCase(c));
      hash *= 1099511628211ULL;
    }
    return static_cast<size_t>(hash);
  }
};

struct CaseInsensitiveEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const noexcept { return IEquals(a, b); }
};

}  // namespace keyed_collection_detail

// The errors of the platform's collection for a bad position and a missing key.
inline RuntimeError BadCollectionPosition() {
  return RuntimeError::SubscriptOutOfRange();
}
inline RuntimeError MissingCollectionKey() {
  return {5, "Invalid procedure call or argument"};
}

template <typename T>
class KeyedCollection {
 public:
  // Stores `item` under `key` and returns it; nullptr (and nothing stored) when the key is
  // already taken.
  T* Add(std::string_view key, T item) {
    auto [it, inserted] = index_.try_emplace(std::string(key), items_.size());
    if (!inserted) return nullptr;
    items_.push_back(std::move(item));
    keys_.emplace_back(key);
    return &items_.back();
  }

  // nullptr when no item has the key.
  const T* Find(std::string_view key) const noexcept {
    const auto it = index_.find(key);
    return it == index_.end() ? nullptr : &items_[it->second];
  }
  T* Find(std::string_view key) noexcept {
    const auto it = index_.find(key);
    return it == index_.end() ? nullptr : &items_[it->second];
  }

  // Position 1 .. Count(); throws "Subscript out of range" outside it.
  const T& Item(int32_t position) const { return items_[Offset(position)]; }
  T& Item(int32_t position) { return items_[Offset(position)]; }
  // Throws "Invalid procedure call or argument" for a missing key.
  const T& Item(std::string_view key) const { return items_[OffsetOf(key)]; }
  T& Item(std::string_view key) { return items_[OffsetOf(key)]; }

  // The key an item was stored under, as it was written.
  const std::string& KeyAt(int32_t position) const { return keys_[Offset(position)]; }

  void Remove(int32_t position) { Erase(Offset(position)); }
  void Remove(std::string_view key) { Erase(OffsetOf(key)); }

  int32_t Count() const noexcept { return static_cast<int32_t>(items_.size()); }

  // Items in insertion order.
  auto begin() const noexcept { return items_.begin(); }
  auto end() const noexcept { return items_.end(); }
  auto begin() noexcept { return items_.begin(); }
  auto end() noexcept { return items_.end(); }

 private:
  size_t Offset(int32_t position) const {
    if (position < 1 || position > Count()) throw BadCollectionPosition();
    return static_cast<size_t>(position - 1);
  }

  size_t OffsetOf(std::string_view key) const {
    const auto it = index_.find(key);
    if (it == index_.end()) throw MissingCollectionKey();
    return it->second;
  }

  void Erase(size_t offset) {
    index_.erase(index_.find(std::string_view(keys_[offset])));
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(offset));
    keys_.erase(keys_.begin() + static_cast<std::ptrdiff_t>(offset));
    // Items behind the removed one moved up by one.
    for (auto& entry : index_) {
      if (entry.second > offset) --entry.second;
    }
  }

  std::deque<T> items_;
  std::deque<std::string> keys_;
  std::unordered_map<std::string, size_t, keyed_collection_detail::CaseInsensitiveHash,
                     keyed_collection_detail::CaseInsensitiveEqual>
      index_;
};

}  // namespace vantrel
