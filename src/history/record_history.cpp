#include "vantrel/history/record_history.h"

#include <type_traits>

#include "postgres_history_reader.h"
#include "vantrel/control.h"
#include "vantrel/history/postgres_history.h"
#include "vantrel/history/sqlite_history.h"

namespace vantrel::history {
namespace {

// Losses are told to the host at once, from the writer's thread, and to the control on its
// own thread.
auto LossReporter(const RecordHistorySettings& settings, Control& control) {
  return [&control, notice = settings.notice, post = settings.post](int64_t,
                                                                    std::string_view message) {
    if (notice) notice(message);
    if (post) post([&control, text = std::string(message)] { control.ReportHistoryError(text); });
  };
}

// Detaching comes first: the control must hand no row to a history that is closing.
template <typename Sink>
class Attached final : public RecordHistory {
 public:
  Attached(std::unique_ptr<Sink> sink, Control& control)
      : sink_(std::move(sink)), control_(control) {
    control_.AddRowSink(sink_.get());
  }
  ~Attached() override {
    if (sink_) control_.RemoveRowSink(sink_.get());
  }
  std::string Close() override {
    if (!sink_) return "";
    control_.RemoveRowSink(sink_.get());
    if constexpr (std::is_same_v<Sink, PostgresHistory>) {
      sink_->Close();
    } else {
      sink_->Flush();
    }
    std::string error = sink_->LastError();
    sink_.reset();
    return error;
  }

 private:
  std::unique_ptr<Sink> sink_;
  Control& control_;
};

}  // namespace

bool IsServerHistory(std::string_view target) {
  return PostgresHistory::IsUrl(target);
}

std::unique_ptr<HistoryReader> OpenHistoryReader(const std::string& target, std::string& error) {
  return IsServerHistory(target) ? OpenPostgresHistoryReader(target, error)
                                 : HistoryReader::Open(target, error);
}

std::unique_ptr<RecordHistory> RecordHistory::Open(RecordHistorySettings settings, Control& control,
                                                   std::string& error) {
  if (!IsServerHistory(settings.target)) {
    auto sqlite = SqliteHistory::Open(settings.target, error);
    if (!sqlite) return nullptr;
    sqlite->OnRowsLost(LossReporter(settings, control));
    return std::make_unique<Attached<SqliteHistory>>(std::move(sqlite), control);
  }
  PostgresHistoryOptions options;
  options.url = settings.target;
  options.source = settings.source;
  options.spoolDirectory = settings.spoolDirectory;
  options.spoolLimitBytes = settings.spoolLimitBytes;
  options.notice = settings.notice;
  options.rowsLost = LossReporter(settings, control);
  auto postgres = PostgresHistory::Open(std::move(options), error);
  if (!postgres) return nullptr;
  return std::make_unique<Attached<PostgresHistory>>(std::move(postgres), control);
}

}  // namespace vantrel::history
