#pragma once
// The rows of the record table: record and status rows from decoded cells, the "Miss " and
// "Restart" marker rows, each stamped with the PC time and the record counter, offered to
// the host as the OutputLine text and handed to the host's row sinks.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "description/trace_description.h"
#include "vantrel/clock.h"
#include "vantrel/record_cells.h"
#include "vantrel/row_sink.h"
#include "vantrel/table_model.h"

namespace vantrel {

// The PC date and time of the last decoded record or status change, as the rows show them.
struct RowStamp {
  DateTime at;
  // The second the texts show: records of one poll share it.
  DateTime shown;
  bool valid = false;
  std::string date;  // "dd/mm/yy"
  std::string time;  // "hh:mm:ss"
  CellReading dateReading;
  CellReading timeReading;
};

// The stamps the host asked to see in front of a row's data in the OutputLine text.
struct LineStamps {
  bool date = false;
  bool time = false;
  bool status = false;
};

class RowStore {
 public:
  using LineOutput = std::function<void(std::string_view)>;
  // `output` receives the OutputLine text of every row.
  RowStore(TableModel& table, const char& decimalSeparator, LineOutput output)
      : table_(table), decimalSeparator_(decimalSeparator), output_(std::move(output)) {}

  TableModel& Table() { return table_; }
  const TableModel& Table() const { return table_; }

  // Stamps the rows that follow with `now`.
  void StampAt(const DateTime& now);
  const RowStamp& Stamp() const { return stamp_; }

  int32_t RecordCount() const { return recordCount_; }
  void ResetRecordCount() { recordCount_ = 0; }
  // Counts one more row; false when the count was at its limit and began again at 0.
  bool CountRecord();

  // Offers a record (or status) row of these cells as OutputLine, before it is appended.
  void OutputRecordLine(const CellRow& traceCells, std::string_view status, LineStamps stamps);
  // Appends a record (or status) row; the row takes the cells over and `traceCells` is left
  // with empty buffers to reuse. The row goes to the sinks too.
  void AppendRecord(CellRow& traceCells, RowKind kind, std::string_view status);
  // Appends a marker row (Miss, Restart) with dashes in every trace column, offers it as
  // OutputLine and hands it to the sinks.
  void AppendMarker(RowKind kind, const std::string& status, int64_t missed, LineStamps stamps);
  // Scrolls the table so that its newest row is in view.
  void ScrollToNewest();

  void AddSink(RowSink* sink);
  void RemoveSink(RowSink* sink);
  void AnnounceDescription(const HistoryDescription& description);

 private:
  void AppendStampCells(std::string_view status, CellRow& cells) const;
  void Announce(const HistoryRow& row);

  TableModel& table_;
  const char& decimalSeparator_;
  LineOutput output_;
  RowStamp stamp_;
  int32_t recordCount_ = 0;
  std::vector<RowSink*> sinks_;
  // The OutputLine text of a record row, built in a buffer kept across rows.
  std::string line_;
};

// The description as the row sinks receive it: its columns in the order of a row's cells.
HistoryDescription HistoryDescriptionOf(const TraceDescription& description, std::string key);

}  // namespace vantrel
