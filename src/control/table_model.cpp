#include "vantrel/table_model.h"

#include <algorithm>

#include "platform/runtime_error.h"

namespace vantrel {

// Cells are stored one after the other with a one-byte gap between neighbours, so that a
// row given as tab-separated text is taken over with one copy.
constexpr char kCellGap = '\t';

size_t TableModel::Row::Begin(size_t i) const {
  return i == 0 ? 0 : ends[i - 1] + 1;
}

std::string_view TableModel::Row::Cell(size_t i) const {
  const size_t begin = Begin(i);
  return std::string_view(text).substr(begin, ends[i] - begin);
}

void TableModel::Row::Resize(size_t cells) {
  if (cells < ends.size()) {
    text.resize(cells == 0 ? 0 : ends[cells - 1]);
    ends.resize(cells);
  }
  while (ends.size() < cells)
    AppendCell({});
}

void TableModel::Row::AppendCell(std::string_view value) {
  if (!ends.empty()) text += kCellGap;
  text += value;
  ends.push_back(static_cast<uint32_t>(text.size()));
}

void TableModel::Row::Set(size_t i, std::string_view value) {
  const size_t begin = Begin(i);
  const size_t oldLength = ends[i] - begin;
  text.replace(begin, oldLength, value);
  const auto delta = static_cast<int64_t>(value.size()) - static_cast<int64_t>(oldLength);
  for (size_t k = i; k < ends.size(); ++k) {
    ends[k] = static_cast<uint32_t>(static_cast<int64_t>(ends[k]) + delta);
  }
}

void TableModel::Row::ClearCells() {
  const size_t cells = ends.size();
  text.assign(cells == 0 ? 0 : cells - 1, kCellGap);
  for (size_t i = 0; i < cells; ++i)
    ends[i] = static_cast<uint32_t>(i);
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
  header_.Resize(count);
  for (Row& row : rows_)
    row.Resize(count);
  Notify([](TableObserver& o) { o.TableReset(); });
}

void TableModel::SetRowCount(int rows) {
  const auto dataRows = static_cast<size_t>(std::max(rows, 1) - 1);
  if (dataRows < rows_.size()) {
    const int removedFrom = static_cast<int>(dataRows) + 1;
    const int removed = static_cast<int>(rows_.size() - dataRows);
    rows_.resize(dataRows);
    Notify([&](TableObserver& o) { o.RowsRemoved(removedFrom, removed); });
  } else if (dataRows > rows_.size()) {
    const int first = RowCount();
    Row empty;
    empty.Resize(columns_.size());
    const int added = static_cast<int>(dataRows - rows_.size());
    rows_.resize(dataRows, empty);
    Notify([&](TableObserver& o) { o.RowsAppended(first, added); });
  }
  if (topRow_ >= RowCount()) topRow_ = std::max(1, RowCount() - 1);
}

const TableModel::Row& TableModel::RowAt(int row) const {
  if (row < 0 || row >= RowCount()) throw RuntimeError::SubscriptOutOfRange();
  return row == 0 ? header_ : rows_[static_cast<size_t>(row - 1)];
}

TableModel::Row& TableModel::RowAt(int row) {
  return const_cast<Row&>(static_cast<const TableModel*>(this)->RowAt(row));
}

void TableModel::CheckColumn(int column) const {
  if (column < 0 || column >= ColumnCount()) throw RuntimeError::SubscriptOutOfRange();
}

std::string_view TableModel::Text(int row, int column) const {
  CheckColumn(column);
  return RowAt(row).Cell(static_cast<size_t>(column));
}

void TableModel::SetText(int row, int column, std::string_view text) {
  CheckColumn(column);
  RowAt(row).Set(static_cast<size_t>(column), text);
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

int32_t TableModel::HeaderBackColor(int column) const {
  CheckColumn(column);
  return columns_[static_cast<size_t>(column)].headerBackColor;
}

void TableModel::SetHeaderBackColor(int column, int32_t color) {
  CheckColumn(column);
  columns_[static_cast<size_t>(column)].headerBackColor = color;
  Notify([&](TableObserver& o) { o.ColumnChanged(column); });
}

TableModel::Row TableModel::TakeSpareRow() {
  Row row = std::move(spare_);
  row.text.clear();
  row.ends.clear();
  return row;
}

void TableModel::AddRow(std::span<const std::string> cells) {
  Row row = TakeSpareRow();
  const size_t count = columns_.size();
  row.ends.reserve(count);
  for (size_t i = 0; i < count; ++i)
    row.AppendCell(i < cells.size() ? std::string_view(cells[i]) : std::string_view());
  rows_.push_back(std::move(row));
  const int added = RowCount() - 1;
  Notify([&](TableObserver& o) { o.RowsAppended(added, 1); });
}

void TableModel::AddItem(std::string_view tabSeparated) {
  Row row = TakeSpareRow();
  const size_t count = columns_.size();
  row.ends.reserve(count);
  if (count > 0) {
    // The tabs become the gaps between cells: the cells only need their ends found.
    row.text.assign(tabSeparated);
    size_t start = 0;
    while (row.ends.size() < count) {
      const size_t tab = tabSeparated.find('\t', start);
      if (tab == std::string_view::npos) break;
      if (row.ends.size() + 1 == count) {
        row.text.resize(tab);  // cells beyond the column count are dropped
        break;
      }
      row.ends.push_back(static_cast<uint32_t>(tab));
      start = tab + 1;
    }
    row.ends.push_back(static_cast<uint32_t>(row.text.size()));
    row.Resize(count);
  }
  rows_.push_back(std::move(row));
  const int added = RowCount() - 1;
  Notify([&](TableObserver& o) { o.RowsAppended(added, 1); });
}

void TableModel::RemoveRow(int row) {
  if (row < 1 || row >= RowCount()) throw RuntimeError::SubscriptOutOfRange();
  if (row == 1) {
    // The oldest row's buffers serve the next row appended: a table at its row limit then
    // appends and drops rows without allocating.
    spare_ = std::move(rows_.front());
    rows_.pop_front();
  } else {
    rows_.erase(rows_.begin() + (row - 1));
  }
  if (topRow_ > 1 && topRow_ >= RowCount()) topRow_ = RowCount() - 1;
  Notify([&](TableObserver& o) { o.RowsRemoved(row, 1); });
}

void TableModel::ClearCells() {
  header_.ClearCells();
  for (Row& row : rows_)
    row.ClearCells();
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
