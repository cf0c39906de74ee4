#pragma once
// The record table's view (fxgRecords): a table view whose header row has the height of a
// data row, so that "the press hit the header row" is the same test for the control as for
// the eye. It reports presses and double-clicks on the header and on cells, keeps the row
// the control asks for at the top, and copies the selected cells on Ctrl+C and from its
// context menu.

#include <QTableView>

class QAction;

namespace vantrel::qt {

class RecordTable final : public QTableView {
  Q_OBJECT

 public:
  explicit RecordTable(QWidget* parent = nullptr);

  // Data rows and the header row take this height.
  void SetRowHeight(int pixels);
  int RowHeight() const { return rowHeight_; }
  // Height of the header row and the data area together (the grid's height for the control).
  int GridHeight() const;
  // Shows model row `row` at the top once the view's geometry has caught up.
  void ScrollToTopRow(int row);
  QAction* CopyAction() const { return copy_; }

 signals:
  // A mouse press `y` pixels below the top of the header row.
  void tablePressed(int y);
  void headerDoubleClicked(int modelColumn);
  void cellDoubleClicked(const QModelIndex& index);
  void copyRequested();
  void gridResized();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  // The data area changes size when a scroll bar comes or goes, not only on resizing.
  bool viewportEvent(QEvent* event) override;

 private:
  int rowHeight_ = 20;
  QAction* copy_;
};

}  // namespace vantrel::qt
