#include "history_queue.h"

namespace vantrel::history {

void HistoryQueue::Push(HistoryItem item) {
  bool wasEmpty = false;
  {
    std::lock_guard lock(mutex_);
    wasEmpty = items_.empty();
    items_.push_back(std::move(item));
    ++queued_;
  }
  // The writer sleeps only on an empty queue: waking it for every row would cost a system
  // call per row.
  if (wasEmpty) wake_.notify_one();
}

bool HistoryQueue::Flush(std::optional<std::chrono::milliseconds> timeout) {
  std::unique_lock lock(mutex_);
  const uint64_t target = queued_;
  wake_.notify_all();
  const auto written = [&] { return done_ >= target; };
  if (!timeout) {
    written_.wait(lock, written);
    return true;
  }
  return written_.wait_for(lock, *timeout, written);
}

void HistoryQueue::Stop() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_all();
}

bool HistoryQueue::Take(std::deque<HistoryItem>& into, std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  // Items that come close together share one batch.
  wake_.wait_for(lock, wait, [this] { return stopping_ || !items_.empty(); });
  if (into.empty()) {
    into.swap(items_);
  } else {
    for (HistoryItem& item : items_)
      into.push_back(std::move(item));
    items_.clear();
  }
  return stopping_;
}

void HistoryQueue::Done(size_t items) {
  {
    std::lock_guard lock(mutex_);
    done_ += items;
  }
  written_.notify_all();
}

void HistoryQueue::Lose(size_t rows, size_t items, const std::string& why) {
  int64_t total = 0;
  LossReport report;
  {
    std::lock_guard lock(mutex_);
    lost_ += static_cast<int64_t>(rows);
    total = lost_;
    if (error_.empty()) error_ = why;
    report = report_;
  }
  // Told before the items count as done: whoever Flush()es then sees every loss reported.
  if (rows > 0 && report) {
    report(static_cast<int64_t>(rows), std::to_string(rows) + " history rows lost: " + why + " (" +
                                           std::to_string(total) + " lost in all)");
  }
  Done(items);
}

void HistoryQueue::OnRowsLost(LossReport report) {
  std::lock_guard lock(mutex_);
  report_ = std::move(report);
}

std::string HistoryQueue::FirstError() const {
  std::lock_guard lock(mutex_);
  return error_;
}

int64_t HistoryQueue::RowsLost() const {
  std::lock_guard lock(mutex_);
  return lost_;
}

}  // namespace vantrel::history
