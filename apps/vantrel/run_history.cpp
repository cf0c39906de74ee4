#include "run_history.h"

#include <charconv>
#include <cstdio>

#include "vantrel/history/postgres_history.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::cli {
namespace {

// Losses are told at once on standard error (from the writer's thread) and to the control on
// its own thread, through the loop.
auto LossReporter(Control& control, PollEventLoop& loop) {
  return [&control, &loop](int64_t, std::string_view message) {
    std::fprintf(stderr, "vantrel run: %.*s\n", static_cast<int>(message.size()), message.data());
    loop.Post([&control, text = std::string(message)] { control.ReportHistoryError(text); });
  };
}

class SqliteRunHistory final : public RunHistory {
 public:
  SqliteRunHistory(std::unique_ptr<history::SqliteHistory> history, Control& control)
      : history_(std::move(history)), control_(control) {
    control_.AddRowSink(history_.get());
  }
  std::string Close() override {
    control_.RemoveRowSink(history_.get());
    history_->Flush();
    return history_->LastError();
  }

 private:
  std::unique_ptr<history::SqliteHistory> history_;
  Control& control_;
};

class PostgresRunHistory final : public RunHistory {
 public:
  PostgresRunHistory(std::unique_ptr<history::PostgresHistory> history, Control& control)
      : history_(std::move(history)), control_(control) {
    control_.AddRowSink(history_.get());
  }
  std::string Close() override {
    control_.RemoveRowSink(history_.get());
    // Closing waits for an absent server only as long as the history allows, then tells
    // what it gave up.
    history_->Close();
    return history_->LastError();
  }

 private:
  std::unique_ptr<history::PostgresHistory> history_;
  Control& control_;
};

}  // namespace

std::unique_ptr<RunHistory> RunHistory::Open(const HistorySettings& settings, Control& control,
                                             PollEventLoop& loop, std::string& error) {
  if (!history::PostgresHistory::IsUrl(settings.target)) {
    auto sqlite = history::SqliteHistory::Open(settings.target, error);
    if (!sqlite) return nullptr;
    sqlite->OnRowsLost(LossReporter(control, loop));
    return std::make_unique<SqliteRunHistory>(std::move(sqlite), control);
  }
  history::PostgresHistoryOptions options;
  options.url = settings.target;
  options.source = settings.source;
  options.spoolDirectory = settings.spoolDirectory;
  options.spoolLimitBytes = settings.spoolLimitBytes;
  options.notice = [](std::string_view message) {
    std::fprintf(stderr, "vantrel run: %.*s\n", static_cast<int>(message.size()), message.data());
  };
  options.rowsLost = LossReporter(control, loop);
  auto postgres = history::PostgresHistory::Open(std::move(options), error);
  if (!postgres) return nullptr;
  return std::make_unique<PostgresRunHistory>(std::move(postgres), control);
}

std::optional<uint64_t> ParseByteSize(std::string_view text) {
  uint64_t value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end == text.data()) return std::nullopt;
  const std::string_view unit(end, static_cast<size_t>(text.data() + text.size() - end));
  int shift = 0;
  if (unit == "K" || unit == "k") {
    shift = 10;
  } else if (unit == "M" || unit == "m") {
    shift = 20;
  } else if (unit == "G" || unit == "g") {
    shift = 30;
  } else if (!unit.empty()) {
    return std::nullopt;
  }
  if (value > (UINT64_MAX >> shift)) return std::nullopt;
  return value << shift;
}

}  // namespace vantrel::cli
