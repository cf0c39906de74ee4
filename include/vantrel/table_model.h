#pragma once
// The record table as the core keeps it: a header row of captions and data rows kept as
// values (the record's cells with their typed values, or a marker or status row), per-column
// width (twips), alignment and column data, the columns selected for the graph and the export
// (shown as a yellow header), the top row to show and a redraw flag. Views present it and
// follow its changes through TableObserver. Appending at the bottom and removing the oldest
// row cost constant time.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vantrel/clock.h"
#include "vantrel/record_cells.h"
#include "vantrel/ring.h"
#include "vantrel/row_kind.h"

namespace vantrel {

// The table's first columns; the trace columns follow from kFirstTraceColumn.
inline constexpr int kRecordNumberColumn = 0;
inline constexpr int kPcDateColumn = 1;
inline constexpr int kPcTimeColumn = 2;
inline constexpr int kStatusColumn = 3;
inline constexpr int kFirstTraceColumn = 4;

// One data row: the stamp cells (record number, PC date, PC time, controller status) and one
// cell per trace column. The accessors take table column numbers.
struct TableRow {
  RowKind kind = RowKind::Record;
  int32_t recordNumber = 0;  // marker rows carry the last record's number
  DateTime pcTime;
  int64_t missed = 0;  // records lost, on a Miss row
  CellRow stamps;
  CellRow cells;

  std::string_view Text(int column) const { return Part(column).Text(Index(column)); }
  std::string_view Comment(int column) const { return Part(column).Comment(Index(column)); }
  int64_t Raw(int column) const { return Part(column).Raw(Index(column)); }
  CellValue Value(int column) const { return Part(column).Value(Index(column)); }
  std::optional<double> Number(int column) const { return Part(column).Number(Index(column)); }
  double Plot(int column) const { return Part(column).Plot(Index(column)); }
  std::optional<double> Serial(int column) const { return Part(column).Serial(Index(column)); }

  const CellRow& Part(int column) const { return column < kFirstTraceColumn ? stamps : cells; }
  CellRow& Part(int column) { return column < kFirstTraceColumn ? stamps : cells; }
  static size_t Index(int column) {
    return static_cast<size_t>(column < kFirstTraceColumn ? column : column - kFirstTraceColumn);
  }
};

class TableObserver {
 public:
  virtual ~TableObserver() = default;
  // Columns, header or the whole content changed.
  virtual void TableReset() {}
  virtual void RowsAppended(int firstRow, int count) { (void)firstRow, (void)count; }
  virtual void RowsRemoved(int firstRow, int count) { (void)firstRow, (void)count; }
  virtual void CellChanged(int row, int column) { (void)row, (void)column; }
  virtual void ColumnChanged(int column) { (void)column; }
  virtual void TopRowChanged(int topRow) { (void)topRow; }
  virtual void RedrawChanged(bool redraw) { (void)redraw; }
};

class TableModel {
 public:
  static constexpr int32_t kDefaultRowHeight = 240;  // twips

  // Row 0 is the header row; data rows are 1 .. RowCount() - 1.
  int RowCount() const { return static_cast<int>(rows_.size()) + 1; }
  int DataRowCount() const { return static_cast<int>(rows_.size()); }
  int ColumnCount() const { return static_cast<int>(columns_.size()); }
  int FixedRows() const { return 1; }
  int FixedColumns() const { return 1; }

  // Grows or shrinks every row; new cells are empty.
  void SetColumnCount(int columns);
  // At least 1 (the header row); new rows are empty, extra rows are dropped from the bottom.
  void SetRowCount(int rows);

  // Cell text; an out-of-range cell throws RuntimeError (subscript out of range).
  std::string_view Text(int row, int column) const;
  void SetText(int row, int column, std::string_view text);
  // Data row `row` (1 .. RowCount() - 1) as a value.
  const TableRow& Row(int row) const;

  int32_t ColumnWidth(int column) const;
  void SetColumnWidth(int column, int32_t twips);
  int16_t ColumnAlignment(int column) const;
  void SetColumnAlignment(int column, int16_t alignment);
  int32_t ColumnData(int column) const;
  void SetColumnData(int column, int32_t data);
  // Whether the column is selected for the graph and the export.
  bool Selected(int column) const;
  void SetSelected(int column, bool selected);
  // Background colour of the header cell of a column: yellow when selected, else 0 (the
  // default colour).
  int32_t HeaderBackColor(int column) const;

  // Appends a data row; cells beyond the column count are dropped, missing ones are empty.
  void AddRow(TableRow row);
  // Appends a data row that `fill` writes into an empty row, whose buffers are reused from a
  // row removed earlier: a table at its row limit appends without allocating.
  template <typename Fill>
  void AppendRow(Fill&& fill);
  // Removes data row `row` (>= 1). Removing row 1, the oldest, costs constant time.
  void RemoveRow(int row);
  // Empties every cell text, the header's too; rows, columns and their settings stay.
  void ClearCells();

  int TopRow() const { return topRow_; }
  void SetTopRow(int row);
  bool Redraw() const { return redraw_; }
  void SetRedraw(bool redraw);

  const std::string& FontName() const { return fontName_; }
  void SetFontName(std::string name) { fontName_ = std::move(name); }
  double FontSize() const { return fontSize_; }
  void SetFontSize(double size) { fontSize_ = size; }

  // Heights in twips that the view reports; they decide how many rows fit (scrolling).
  int32_t RowHeight() const { return rowHeight_; }
  void SetRowHeight(int32_t twips) { rowHeight_ = twips > 0 ? twips : kDefaultRowHeight; }
  int32_t ViewHeight() const { return viewHeight_; }
  void SetViewHeight(int32_t twips) { viewHeight_ = twips; }

  void AddObserver(TableObserver* observer);
  void RemoveObserver(TableObserver* observer);

 private:
  struct Column {
    int32_t width = 0;
    int16_t alignment = 0;
    int32_t data = 0;
    bool selected = false;
  };

  TableRow& DataRow(int row);
  // Gives the row exactly one cell per column.
  void Shape(TableRow& row) const;
  void RowAppended();
  void CheckColumn(int column) const;
  template <typename F>
  void Notify(F&& f);

  std::vector<std::string> header_;
  Ring<TableRow> rows_;
  std::vector<Column> columns_;
  int topRow_ = 1;
  bool redraw_ = true;
  std::string fontName_ = "Courier";
  double fontSize_ = 10;
  int32_t rowHeight_ = kDefaultRowHeight;
  int32_t viewHeight_ = 0;
  std::vector<TableObserver*> observers_;
};

template <typename Fill>
void TableModel::AppendRow(Fill&& fill) {
  TableRow& row = rows_.AppendSlot();
  row.kind = RowKind::Record;
  row.recordNumber = 0;
  row.pcTime = {};
  row.missed = 0;
  row.stamps.Clear();
  row.cells.Clear();
  try {
    fill(row);
  } catch (...) {
    rows_.PopBack();
    throw;
  }
  Shape(row);
  RowAppended();
}

}  // namespace vantrel
