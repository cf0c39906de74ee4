#include "record_table_model.h"

#include <QBrush>
#include <algorithm>

#include "text_conversion.h"
#include "vantrel/surface.h"

namespace vantrel::qt {

Qt::Alignment AlignmentFromCode(int code) {
  if (code < 0 || code > 8) return Qt::AlignLeft | Qt::AlignVCenter;
  static constexpr Qt::AlignmentFlag kHorizontal[] = {Qt::AlignLeft, Qt::AlignHCenter,
                                                      Qt::AlignRight};
  static constexpr Qt::AlignmentFlag kVertical[] = {Qt::AlignTop, Qt::AlignVCenter,
                                                    Qt::AlignBottom};
  return kHorizontal[code / 3] | kVertical[code % 3];
}

RecordTableModel::RecordTableModel(TableModel& table, QObject* parent)
    : QAbstractTableModel(parent),
      table_(&table),
      rows_(table.DataRowCount()),
      columns_(std::max(table.ColumnCount() - 1, 0)) {
  flush_.setSingleShot(true);
  flush_.setInterval(0);
  connect(&flush_, &QTimer::timeout, this, &RecordTableModel::Flush);
  table_->AddObserver(this);
}

RecordTableModel::~RecordTableModel() {
  Detach();
}

void RecordTableModel::Detach() {
  if (table_ == nullptr) return;
  table_->RemoveObserver(this);
  flush_.stop();
  beginResetModel();
  table_ = nullptr;
  rows_ = 0;
  columns_ = 0;
  droppedFront_ = 0;
  appended_ = 0;
  endResetModel();
}

void RecordTableModel::Flush() {
  flush_.stop();
  if (droppedFront_ > 0) {
    beginRemoveRows(QModelIndex(), 0, droppedFront_ - 1);
    rows_ -= droppedFront_;
    droppedFront_ = 0;
    endRemoveRows();
  }
  if (appended_ > 0) {
    beginInsertRows(QModelIndex(), rows_, rows_ + appended_ - 1);
    rows_ += appended_;
    appended_ = 0;
    endInsertRows();
  }
}

int RecordTableModel::ShownTableRow(int modelRow) const {
  if (modelRow < droppedFront_) return 0;
  const int row = TableRow(modelRow - droppedFront_);
  // The table throws on a row it does not have; a view must never get to see that.
  return row < table_->RowCount() ? row : 0;
}

int RecordTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int RecordTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns_;
}

QVariant RecordTableModel::Alignment(int tableColumn) const {
  return QVariant::fromValue(AlignmentFromCode(table_->ColumnAlignment(tableColumn)));
}

QVariant RecordTableModel::data(const QModelIndex& index, int role) const {
  if (table_ == nullptr || !index.isValid() || index.row() >= rows_ || index.column() >= columns_) {
    return {};
  }
  const int column = TableColumn(index.column());
  const int row = ShownTableRow(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return row == 0 ? QVariant() : QVariant(ToQString(table_->Text(row, column)));
    case Qt::TextAlignmentRole:
      return Alignment(column);
    default:
      return {};
  }
}

QVariant RecordTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (table_ == nullptr || section < 0) return {};
  if (orientation == Qt::Vertical) {
    const int row = ShownTableRow(section);
    if (section >= rows_ || row == 0 || table_->ColumnCount() == 0) return {};
    if (role == Qt::DisplayRole) return ToQString(table_->Text(row, 0));
    if (role == Qt::TextAlignmentRole) return Alignment(0);
    return {};
  }
  if (section >= columns_) return {};
  const int column = TableColumn(section);
  switch (role) {
    case Qt::DisplayRole:
      return ToQString(table_->Text(0, column));
    case Qt::TextAlignmentRole:
      return Alignment(column);
    case Qt::BackgroundRole: {
      // 0 is the header's own colour; any other colour (yellow marks a selected column)
      // is painted.
      const int32_t color = table_->HeaderBackColor(column);
      if (color == kColorBlack) return {};
      return QBrush(ColorFromBgr(color));
    }
    default:
      return {};
  }
}

Qt::ItemFlags RecordTableModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

void RecordTableModel::TableReset() {
  flush_.stop();
  beginResetModel();
  rows_ = table_->DataRowCount();
  columns_ = std::max(table_->ColumnCount() - 1, 0);
  droppedFront_ = 0;
  appended_ = 0;
  endResetModel();
  emit tableReset();
}

void RecordTableModel::RowsAppended(int firstRow, int count) {
  if (count <= 0) return;
  // The table's rows are the told rows less those dropped, then those appended since.
  const int known = rows_ - droppedFront_ + appended_;
  if (firstRow - 1 != known || table_->DataRowCount() != known + count) {
    TableReset();  // out of step: take the table as it is now
    return;
  }
  appended_ += count;
  if (!flush_.isActive()) flush_.start();
  emit rowsAppended(firstRow, count);
}

void RecordTableModel::RowsRemoved(int firstRow, int count) {
  if (count <= 0) return;
  if (firstRow == 1) {
    // Dropped at the front: a told row first, then rows appended but not told yet.
    for (int i = 0; i < count; ++i) {
      if (droppedFront_ < rows_) {
        ++droppedFront_;
      } else if (appended_ > 0) {
        --appended_;
      } else {
        TableReset();
        return;
      }
    }
    if (!flush_.isActive()) flush_.start();
    return;
  }
  Flush();
  const int first = firstRow - 1;
  if (first < 0 || first + count > rows_ || table_->DataRowCount() != rows_ - count) {
    TableReset();
    return;
  }
  beginRemoveRows(QModelIndex(), first, first + count - 1);
  rows_ -= count;
  endRemoveRows();
}

void RecordTableModel::CellChanged(int row, int column) {
  if (row == 0) {
    if (column >= 1) emit headerDataChanged(Qt::Horizontal, column - 1, column - 1);
    return;
  }
  Flush();
  if (row - 1 >= rows_) return;
  if (column == 0) {
    emit headerDataChanged(Qt::Vertical, row - 1, row - 1);
    return;
  }
  const QModelIndex cell = index(row - 1, column - 1);
  emit dataChanged(cell, cell, {Qt::DisplayRole});
}

void RecordTableModel::ColumnChanged(int column) {
  if (column >= 1 && column - 1 < columns_) {
    emit headerDataChanged(Qt::Horizontal, column - 1, column - 1);
  }
  emit columnChanged(column);
}

void RecordTableModel::TopRowChanged(int topRow) {
  emit topRowChanged(topRow);
}

void RecordTableModel::RedrawChanged(bool redraw) {
  emit redrawChanged(redraw);
}

}  // namespace vantrel::qt
