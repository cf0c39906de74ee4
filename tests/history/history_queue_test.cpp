// The hand-over between the control's thread and a history's writer: everything queued is
// taken once and in order, Flush waits for the writer's verdict on it (losses reported
// first), and a stop reaches a waiting writer.

#include "history/history_queue.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace vantrel::history {
namespace {

using std::chrono::milliseconds;

EncodedRow Row(int64_t number) {
  EncodedRow row;
  row.recordNumber = number;
  return row;
}

TEST(HistoryQueue, AFlushReturnsOnlyWhenEveryItemIsWrittenOrItsLossReported) {
  HistoryQueue queue;
  std::vector<std::string> reports;
  queue.OnRowsLost([&](int64_t, std::string_view message) { reports.emplace_back(message); });
  std::vector<int64_t> written;
  std::thread writer([&] {
    std::deque<HistoryItem> batch;
    while (true) {
      const bool stopping = queue.Take(batch, milliseconds(100));
      if (batch.empty() && stopping) return;
      // Rows with odd numbers cannot be written; a batch's description goes with them.
      std::deque<HistoryItem> kept;
      size_t lostRows = 0;
      for (HistoryItem& item : batch) {
        const auto* row = std::get_if<EncodedRow>(&item);
        if (row != nullptr && row->recordNumber % 2 != 0) {
          ++lostRows;
        } else if (row != nullptr) {
          written.push_back(row->recordNumber);
        }
      }
      if (lostRows > 0) queue.Lose(lostRows, lostRows, "disk full");
      queue.Done(batch.size() - lostRows);
      batch.clear();
    }
  });
  queue.Push(HistoryDescription{});
  for (int64_t n = 0; n < 1000; ++n)
    queue.Push(Row(n));
  queue.Flush();
  // Read right after the flush, without the writer's help: both are complete already.
  EXPECT_EQ(written.size(), 500U);
  EXPECT_EQ(queue.RowsLost(), 500);
  int64_t reported = 0;
  for (const std::string& report : reports)
    reported += std::stoll(report);
  EXPECT_EQ(reported, 500);
  EXPECT_EQ(queue.FirstError(), "disk full");
  EXPECT_NE(reports.back().find(" history rows lost: disk full (500 lost in all)"),
            std::string::npos)
      << reports.back();
  for (size_t i = 0; i < written.size(); ++i)
    ASSERT_EQ(written[i], static_cast<int64_t>(2 * i)) << "taken once, in order";
  queue.Stop();
  writer.join();
}

TEST(HistoryQueue, AStopWakesAWaitingWriter) {
  HistoryQueue queue;
  std::thread stopper([&] {
    std::this_thread::sleep_for(milliseconds(20));
    queue.Stop();
  });
  std::deque<HistoryItem> batch;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(queue.Take(batch, milliseconds(60000)));
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(30000));
  EXPECT_TRUE(batch.empty());
  stopper.join();
}

}  // namespace
}  // namespace vantrel::history
