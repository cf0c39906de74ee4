#pragma once
// Selected table cells as text for the clipboard: the rows and columns that the selection
// spans, one line per row, cells separated by tabs, as spreadsheets paste them. Cells of the
// span that are not selected stay empty; columns the view hides are left out.

#include <QModelIndexList>
#include <QString>
#include <functional>

class QAbstractItemModel;

namespace vantrel::qt {

QString SelectionText(const QAbstractItemModel& model, const QModelIndexList& selected,
                      const std::function<bool(int column)>& columnHidden);

}  // namespace vantrel::qt
