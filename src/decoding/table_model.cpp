#include "vantrel/table_model.h"

#include <algorithm>

#include "platform/runtime_error.h"
#include "vantrel/surface.h"

namespace vantrel {

void TableModel::Shape(TableRow& row) const {
  const auto columns = static_cast<size_t>(ColumnCount());
  const auto stamps = static_cast<size_t>(kFirstTraceColumn);
  const size_t stampCells = std::min(columns, stamps);
  const size_t traceCells = columns > stamps ? columns - stamps : 0;
  // Rows appended as the table is shaped need nothing done.
  if (row.stamps.Size() != stampCells) row.stamps.Resize(stampCells);
  if (row.cells.Size() != traceCells) row.cells.Resize(traceCells);
}

template <typename F>
void TableModel::Notify(F&& f) {
  for (TableObserver* observer : observers_)
    f(*observer);
}

void TableModel::SetColumnCount(int columns) {
  columns = std::max(columns, 0);
  const auto count = static_cast<size_t>(columns);
  columns_.resize(count);
  header_.resize(count);
  rows_.ForEach([this](TableRow& row) { Shape(row); });
  Notify([](TableObserver& o) { o.TableReset(); });
}

void TableModel::SetRowCount(int rows) {
  const auto dataRows = static_cast<size_t>(std::max(rows, 1) - 1);
  if (dataRows < rows_.size()) {
    const int removedFrom = static_cast<int>(dataRows) + 1;
    const int removed = static_cast<int>(rows_.size() - dataRows);
    rows_.resize(dataRows, TableRow{});
    Notify([&](TableObserver& o) { o.RowsRemoved(removedFrom, removed); });
  } else if (dataRows > rows_.size()) {
    const int first = RowCount();
    TableRow empty;
    Shape(empty);
    const int added = static_cast<int>(dataRows - rows_.size());
    rows_.resize(dataRows, empty);
    Notify([&](TableObserver& o) { o.RowsAppended(first, added); });
  }
  if (topRow_ >= RowCount()) topRow_ = std::max(1, RowCount() - 1);
}

const TableRow& TableModel::Row(int row) const {
  if (row < 1 || row >= RowCount()) throw RuntimeError::SubscriptOutOfRange();
  return rows_[static_cast<size_t>(row - 1)];
}

TableRow& TableModel::DataRow(int row) {
  return const_cast<TableRow&>(Row(row));
}

void TableModel::CheckColumn(int column) const {
  if (column < 0 || column >= ColumnCount()) throw RuntimeError::SubscriptOutOfRange();
}

std::string_view TableModel::Text(int row, int column) const {
  CheckColumn(column);
  if (row == 0) return header_[static_cast<size_t>(column)];
  return Row(row).Text(column);
}

void TableModel::SetText(int row, int column, std::string_view text) {
  CheckColumn(column);
  if (row == 0) {
    header_[static_cast<size_t>(column)] = text;
  } else {
    DataRow(row).Part(column).SetText(TableRow::Index(column), text);
  }
  Notify([&](TableObserver& o) { o.CellChanged(row, column); });
}

int32_t TableModel::ColumnWidth(int column) const {
  CheckColumn(column);
  return columns_[static_cast<size_t>(column)].width;
}

void TableModel::SetColumnWidth(int column, int32_t twips) {
  CheckColumn(column);
  columns_[static_cast<size_t>(column)].width = twips;
  Notify([&](TableObserver& o) { o.ColumnChanged(column); });
}

int16_t TableModel::ColumnAlignment(int column) const {
  CheckColumn(column);
  return columns_[static_cast<size_t>(column)].alignment;
}

void TableModel::SetColumnAlignment(int column, int16_t alignment) {
  CheckColumn(column);
  columns_[static_cast<size_t>(column)].alignment = alignment;
  Notify([&](TableObserver& o) { o.ColumnChanged(column); });
}

int32_t TableModel::ColumnData(int column) const {
  CheckColumn(column);
  return columns_[static_cast<size_t>(column)].data;
}

void TableModel::SetColumnData(int column, int32_t data) {
  CheckColumn(column);
  columns_[static_cast<size_t>(column)].data = data;
}

bool TableModel::Selected(int column) const {
  CheckColumn(column);
  return columns_[static_cast<size_t>(column)].selected;
}

void TableModel::SetSelected(int column, bool selected) {
  CheckColumn(column);
  columns_[static_cast<size_t>(column)].selected = selected;
  Notify([&](TableObserver& o) { o.ColumnChanged(column); });
}

int32_t TableModel::HeaderBackColor(int column) const {
  return Selected(column) ? kColorYellow : 0;
}

void TableModel::AddRow(TableRow row) {
  AppendRow([&row](TableRow& slot) { slot = std::move(row); });
}

void TableModel::RowAppended() {
  const int added = RowCount() - 1;
  Notify([&](TableObserver& o) { o.RowsAppended(added, 1); });
}

void TableModel::RemoveRow(int row) {
  if (row < 1 || row >= RowCount()) throw RuntimeError::SubscriptOutOfRange();
  if (row == 1) {
    // The oldest row's buffers serve a row appended later.
    rows_.PopFront();
  } else {
    rows_.erase(static_cast<size_t>(row - 1));
  }
  if (topRow_ > 1 && topRow_ >= RowCount()) topRow_ = RowCount() - 1;
  Notify([&](TableObserver& o) { o.RowsRemoved(row, 1); });
}

void TableModel::ClearCells() {
  for (std::string& caption : header_)
    caption.clear();
  rows_.ForEach([](TableRow& row) {
    row.stamps.ClearCells();
    row.cells.ClearCells();
  });
  Notify([](TableObserver& o) { o.TableReset(); });
}

void TableModel::SetTopRow(int row) {
  if (row < 1 || row >= std::max(RowCount(), 2)) throw RuntimeError::SubscriptOutOfRange();
  if (row == topRow_) return;
  topRow_ = row;
  Notify([&](TableObserver& o) { o.TopRowChanged(row); });
}

void TableModel::SetRedraw(bool redraw) {
  if (redraw == redraw_) return;
  redraw_ = redraw;
  Notify([&](TableObserver& o) { o.RedrawChanged(redraw); });
}

void TableModel::AddObserver(TableObserver* observer) {
  if (observer != nullptr) observers_.push_back(observer);
}

void TableModel::RemoveObserver(TableObserver* observer) {
  std::erase(observers_, observer);
}

}  // namespace vantrel
