#pragma once
// The hand-over between the control's thread, which queues what a history must write, and the
// history's writer thread, which takes it in batches. The control never waits for the writer;
// a host may wait (Flush) until what it queued has been written or given up on. Rows that
// cannot be written are counted and reported, never dropped silently.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "encoded_row.h"

namespace vantrel::history {

class HistoryQueue {
 public:
  using LossReport = std::function<void(int64_t rows, std::string_view message)>;

  // From the control's thread.
  void Push(HistoryItem item);
  // Waits until everything queued before the call has been written or given up on, at most
  // `timeout` when one is given; false when it ran out first.
  bool Flush(std::optional<std::chrono::milliseconds> timeout = std::nullopt);
  // Asks the writer to finish what is queued and stop.
  void Stop();

  // From the writer's thread: waits up to `wait` for items or a stop, then moves everything
  // queued to the back of `into`. True once a stop has been asked.
  bool Take(std::deque<HistoryItem>& into, std::chrono::milliseconds wait);
  // `items` taken are written, or given up on.
  void Done(size_t items);
  // `items` taken are given up on, `rows` of them rows: counted, `why` kept as the first
  // failure when there was none, and the host told.
  void Lose(size_t rows, size_t items, const std::string& why);

  void OnRowsLost(LossReport report);
  std::string FirstError() const;
  int64_t RowsLost() const;

 private:
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::condition_variable written_;
  std::deque<HistoryItem> items_;
  uint64_t queued_ = 0;  // items ever queued
  uint64_t done_ = 0;    // items ever written or given up on
  bool stopping_ = false;
  std::string error_;
  int64_t lost_ = 0;
  LossReport report_;
};

// The rows among history items (the rest are descriptions).
template <typename Items>
size_t RowsIn(const Items& items) {
  size_t rows = 0;
  for (const HistoryItem& item : items)
    rows += std::holds_alternative<EncodedRow>(item) ? 1U : 0U;
  return rows;
}

}  // namespace vantrel::history
