#pragma once
// A queue of values in one ring of slots: appending at the back and dropping from the front
// cost constant time and, once the ring has grown to its size, allocate nothing. A dropped
// value stays in its slot until the slot is appended to again, so values that own buffers
// (rows of text) are refilled in place instead of being built anew.

#include <cstddef>
#include <utility>
#include <vector>

namespace vantrel {

template <typename T>
class Ring {
 public:
  size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }

  T& operator[](size_t i) { return slots_[Slot(i)]; }
  const T& operator[](size_t i) const { return slots_[Slot(i)]; }

  // The slot after the newest value, now part of the ring: it holds whatever value was last
  // dropped from it (or a new T), for the caller to overwrite.
  T& AppendSlot() {
    if (count_ == slots_.size()) Grow();
    ++count_;
    return (*this)[count_ - 1];
  }
  void PopBack() { --count_; }
  void PopFront() {
    head_ = head_ + 1 == slots_.size() ? 0 : head_ + 1;
    --count_;
  }

  // Removes value `i`; the newer ones move forward and its slot goes to the back.
  void erase(size_t i) {
    for (; i + 1 < count_; ++i)
      std::swap((*this)[i], (*this)[i + 1]);
    --count_;
  }

  // Drops values from the back, or appends copies of `fill`.
  void resize(size_t count, const T& fill) {
    if (count_ > count) count_ = count;
    while (count_ < count)
      AppendSlot() = fill;
  }

  template <typename F>
  void ForEach(F&& f) {
    for (size_t i = 0; i < count_; ++i)
      f((*this)[i]);
  }

 private:
  size_t Slot(size_t i) const {
    const size_t slot = head_ + i;
    return slot >= slots_.size() ? slot - slots_.size() : slot;
  }

  void Grow() {
    std::vector<T> grown(slots_.empty() ? 16 : slots_.size() * 2);
    for (size_t i = 0; i < slots_.size(); ++i)
      grown[i] = std::move((*this)[i]);
    slots_ = std::move(grown);
    head_ = 0;
  }

  std::vector<T> slots_;
  size_t head_ = 0;
  size_t count_ = 0;
};

}  // namespace vantrel
