#pragma once
// The control's record table as a Qt item model. The table's header row becomes the
// horizontal header and its column 0 (the record number) the vertical header, so model
// row r is table row r + 1 and model column c is table column c + 1.
//
// The model follows the table's notifications and never polls it: appended and removed
// rows become row insertions and removals, a reset of the table a model reset. The table
// notifies after it changed, so the model keeps the row count the views were told, which
// moves only between the begin and end calls that Qt expects.
//
// A table at its row limit drops its oldest row for every row it appends. Told one by one,
// each drop costs the views work in proportion to the rows they hold; so rows dropped at
// the front and rows appended at the end are gathered and told as one removal and one
// insertion on the next turn of the event loop (or at Flush). Until then the views see the
// rows they were told of: dropped rows read empty, appended rows are not there yet.

#include <QAbstractTableModel>
#include <QTimer>

#include "vantrel/table_model.h"

namespace vantrel::qt {

class RecordTableModel final : public QAbstractTableModel, private TableObserver {
  Q_OBJECT

 public:
  explicit RecordTableModel(TableModel& table, QObject* parent = nullptr);
  ~RecordTableModel() override;
  RecordTableModel(const RecordTableModel&) = delete;
  RecordTableModel& operator=(const RecordTableModel&) = delete;

  // Stops following the table (before the table goes away).
  void Detach();
  // Tells the views now of rows dropped and appended since they were last told.
  void Flush();

  static int TableRow(int modelRow) { return modelRow + 1; }
  static int TableColumn(int modelColumn) { return modelColumn + 1; }
  static int ModelColumn(int tableColumn) { return tableColumn - 1; }
  const TableModel* Table() const { return table_; }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 signals:
  // Columns, fonts or the whole content were rebuilt.
  void tableReset();
  // Width, alignment or header colour of a table column changed.
  void columnChanged(int tableColumn);
  void rowsAppended(int firstTableRow, int count);
  void topRowChanged(int topRow);
  void redrawChanged(bool redraw);

 private:
  void TableReset() override;
  void RowsAppended(int firstRow, int count) override;
  void RowsRemoved(int firstRow, int count) override;
  void CellChanged(int row, int column) override;
  void ColumnChanged(int column) override;
  void TopRowChanged(int topRow) override;
  void RedrawChanged(bool redraw) override;

  QVariant Alignment(int tableColumn) const;
  // The table row shown in model row `modelRow`, or 0 when that row was dropped.
  int ShownTableRow(int modelRow) const;

  TableModel* table_;
  int rows_ = 0;  // as the views were told
  int columns_ = 0;
  int droppedFront_ = 0;  // of the rows told, dropped since at the front
  int appended_ = 0;      // appended since, not told yet
  QTimer flush_;
};

// The flex-grid alignment codes (0 left top .. 8 right bottom, 9 general) as Qt flags.
Qt::Alignment AlignmentFromCode(int code);

}  // namespace vantrel::qt
