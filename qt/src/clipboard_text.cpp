#include "clipboard_text.h"

#include <QAbstractItemModel>
#include <QSet>
#include <QStringList>
#include <algorithm>
#include <limits>

namespace vantrel::qt {

QString SelectionText(const QAbstractItemModel& model, const QModelIndexList& selected,
                      const std::function<bool(int column)>& columnHidden) {
  if (selected.isEmpty()) return {};
  int top = std::numeric_limits<int>::max();
  int bottom = -1;
  int left = std::numeric_limits<int>::max();
  int right = -1;
  QSet<QPair<int, int>> cells;
  for (const QModelIndex& index : selected) {
    if (!index.isValid()) continue;
    top = std::min(top, index.row());
    bottom = std::max(bottom, index.row());
    left = std::min(left, index.column());
    right = std::max(right, index.column());
    cells.insert({index.row(), index.column()});
  }
  QStringList lines;
  for (int row = top; row <= bottom; ++row) {
    QStringList line;
    for (int column = left; column <= right; ++column) {
      if (columnHidden && columnHidden(column)) continue;
      line << (cells.contains({row, column}) ? model.index(row, column).data().toString()
                                             : QString());
    }
    lines << line.join(QLatin1Char('\t'));
  }
  return lines.join(QLatin1Char('\n'));
}

}  // namespace vantrel::qt
