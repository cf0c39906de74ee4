#pragma once
// The widths of the record table's columns. The control keeps them in twips; the view
// shows them at 15 twips per pixel, and a width of 0 hides the column.
//
// Fitting (on by default) draws a column at least as wide as its caption and the widest
// text it has shown, so that no text is cut; the control's width stays as it is. A column
// the user resized by hand is not fitted any more, and the width the user dragged goes back
// to the control (which keeps it across a clear and exports with it).

#include <QObject>
#include <cstddef>
#include <string_view>
#include <vector>

#include "vantrel/table_model.h"

namespace vantrel::qt {

class RecordTable;

class ColumnSizer final : public QObject {
  Q_OBJECT

 public:
  ColumnSizer(RecordTable& view, TableModel& table, QObject* parent = nullptr);

  void SetFit(bool fit);
  // After the table was rebuilt: measures the captions and the newest rows, sizes all.
  void SizeAll();
  // Sizes one table column after the control changed its width.
  void Size(int tableColumn);
  // Measures rows just appended and widens the columns they do not fit.
  void Measure(int firstTableRow, int count);

 private:
  void OnSectionResized(int modelColumn, int newSize);
  int TextWidth(std::string_view text) const;

  RecordTable& view_;
  TableModel& table_;
  bool fit_ = true;
  bool sizing_ = false;  // set while the widths are set from here, not by the user
  // Per model column: pixels its texts need, the longest text seen (bytes), sized by hand.
  std::vector<int> needed_;
  std::vector<size_t> longest_;
  std::vector<bool> userSized_;
  // The record numbers in the row header.
  int numberNeeded_ = 0;
  size_t numberLongest_ = 0;
};

}  // namespace vantrel::qt
