#pragma once
// How long a client waits before it tries a lost controller again: the first wait, doubled
// after every failure up to the longest, and back to the first once a read has succeeded.
// A controller that is away for long is then asked every few seconds, not hammered.

#include <algorithm>

namespace vantrel::hosts::modbus {

class RetryBackoff {
 public:
  RetryBackoff(int firstMs, int longestMs)
      : first_(std::max(firstMs, 1)), longest_(std::max(longestMs, first_)), next_(first_) {}

  // The wait before the next attempt; the one after it is longer.
  int Next() {
    const int wait = next_;
    next_ = next_ >= longest_ / 2 ? longest_ : next_ * 2;
    return wait;
  }
  void Reset() { next_ = first_; }

 private:
  int first_;
  int longest_;
  int next_;
};

}  // namespace vantrel::hosts::modbus
