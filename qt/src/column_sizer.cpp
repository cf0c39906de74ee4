#include "column_sizer.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QHeaderView>
#include <QStyle>
#include <algorithm>

#include "record_table.h"
#include "record_table_model.h"
#include "surface_geometry.h"
#include "text_conversion.h"

namespace vantrel::qt {
namespace {

// Rows measured after the table was rebuilt; rows appended later are measured as they come.
constexpr int kMeasuredRows = 2000;
// Room around a cell's text (the view's margins on both sides).
constexpr int kTextMargin = 12;

}  // namespace

ColumnSizer::ColumnSizer(RecordTable& view, TableModel& table, QObject* parent)
    : QObject(parent), view_(view), table_(table) {
  connect(view_.horizontalHeader(), &QHeaderView::sectionResized, this,
          [this](int column, int, int size) { OnSectionResized(column, size); });
}

void ColumnSizer::SetFit(bool fit) {
  fit_ = fit;
  SizeAll();
}

int ColumnSizer::TextWidth(std::string_view text) const {
  return QFontMetrics(view_.font()).horizontalAdvance(ToQString(text)) + kTextMargin;
}

void ColumnSizer::SizeAll() {
  const auto columns = static_cast<size_t>(std::max(table_.ColumnCount() - 1, 0));
  // Other columns are other columns: what the user sized was in the table before.
  if (columns != userSized_.size()) userSized_.assign(columns, false);
  needed_.assign(columns, 0);
  longest_.assign(columns, 0);
  numberNeeded_ = 0;
  numberLongest_ = 0;
  if (fit_) {
    const int headerMargin = 2 * view_.style()->pixelMetric(QStyle::PM_HeaderMargin) + 6;
    for (size_t c = 0; c < columns; ++c) {
      const std::string_view caption =
          table_.Text(0, RecordTableModel::TableColumn(static_cast<int>(c)));
      needed_[c] = QFontMetrics(view_.font()).horizontalAdvance(ToQString(caption)) + headerMargin;
    }
    const int first = std::max(1, table_.RowCount() - kMeasuredRows);
    Measure(first, table_.RowCount() - first);
  }
  for (int column = 0; column < table_.ColumnCount(); ++column)
    Size(column);
}

void ColumnSizer::Measure(int firstTableRow, int count) {
  if (!fit_ || count <= 0) return;
  const int last = std::min(firstTableRow + count, table_.RowCount());
  const int columns = static_cast<int>(needed_.size());
  std::vector<int> widened;
  for (int row = firstTableRow; row < last; ++row) {
    // Texts are measured only when longer than any before them: most rows cost a length
    // comparison per column.
    const std::string_view number = table_.Text(row, 0);
    if (number.size() > numberLongest_) {
      numberLongest_ = number.size();
      numberNeeded_ = std::max(numberNeeded_, TextWidth(number));
      widened.push_back(0);
    }
    for (int c = 0; c < columns; ++c) {
      const auto index = static_cast<size_t>(c);
      const int column = RecordTableModel::TableColumn(c);
      if (userSized_[index] || table_.ColumnWidth(column) <= 0) continue;
      const std::string_view text = table_.Text(row, column);
      if (text.size() <= longest_[index]) continue;
      longest_[index] = text.size();
      const int width = TextWidth(text);
      if (width > needed_[index]) {
        needed_[index] = width;
        widened.push_back(column);
      }
    }
  }
  for (int column : widened)
    Size(column);
}

void ColumnSizer::Size(int tableColumn) {
  if (tableColumn < 0 || tableColumn >= table_.ColumnCount()) return;
  const int32_t twips = table_.ColumnWidth(tableColumn);
  const int pixels = PixelsFromTwips(twips);
  sizing_ = true;
  if (tableColumn == 0) {
    QHeaderView* numbers = view_.verticalHeader();
    numbers->setVisible(twips > 0);
    numbers->setFixedWidth(fit_ ? std::max(pixels, numberNeeded_) : pixels);
  } else {
    const int column = RecordTableModel::ModelColumn(tableColumn);
    const auto index = static_cast<size_t>(column);
    if (column < view_.model()->columnCount()) {
      const bool fitted = fit_ && index < needed_.size() && !userSized_[index];
      const int shown = fitted ? std::max(pixels, needed_[index]) : pixels;
      view_.setColumnHidden(column, twips <= 0 || shown <= 0);
      if (twips > 0 && shown > 0) view_.setColumnWidth(column, shown);
    }
  }
  sizing_ = false;
}

void ColumnSizer::OnSectionResized(int modelColumn, int newSize) {
  // Only a width the user dragged goes back to the control; the view's own resizing
  // (resets, hiding) does not.
  if (sizing_ || QGuiApplication::mouseButtons() == Qt::NoButton) return;
  if (modelColumn < 0 || static_cast<size_t>(modelColumn) >= userSized_.size()) return;
  userSized_[static_cast<size_t>(modelColumn)] = true;
  table_.SetColumnWidth(RecordTableModel::TableColumn(modelColumn), TwipsFromPixels(newSize));
}

}  // namespace vantrel::qt
