#include "record_table.h"

#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <algorithm>

namespace vantrel::qt {
namespace {

int EventY(const QEvent* event) {
  return static_cast<int>(static_cast<const QMouseEvent*>(event)->position().y());
}

}  // namespace

RecordTable::RecordTable(QWidget* parent) : QTableView(parent), copy_(new QAction(this)) {
  setObjectName(QStringLiteral("fxgRecords"));
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setSelectionBehavior(QAbstractItemView::SelectItems);
  setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setWordWrap(false);
  setTextElideMode(Qt::ElideRight);
  setCornerButtonEnabled(false);
  setSortingEnabled(false);

  QHeaderView* columns = horizontalHeader();
  columns->setSectionResizeMode(QHeaderView::Interactive);
  columns->setSectionsMovable(false);
  columns->setHighlightSections(false);
  columns->setStretchLastSection(false);
  columns->setMinimumSectionSize(1);
  columns->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  QHeaderView* rows = verticalHeader();
  rows->setSectionResizeMode(QHeaderView::Fixed);
  rows->setHighlightSections(false);
  rows->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  columns->viewport()->installEventFilter(this);
  rows->viewport()->installEventFilter(this);

  copy_->setText(tr("&Copy"));
  copy_->setShortcut(QKeySequence::Copy);
  copy_->setShortcutContext(Qt::WidgetShortcut);
  connect(copy_, &QAction::triggered, this, &RecordTable::copyRequested);
  addAction(copy_);
  setContextMenuPolicy(Qt::ActionsContextMenu);
}

void RecordTable::SetRowHeight(int pixels) {
  rowHeight_ = std::max(pixels, 1);
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(rowHeight_);
  horizontalHeader()->setFixedHeight(rowHeight_);
}

int RecordTable::GridHeight() const {
  return horizontalHeader()->height() + viewport()->height();
}

void RecordTable::ScrollToTopRow(int row) {
  // Rows appended in this turn may not be in the scroll range yet.
  updateGeometries();
  verticalScrollBar()->setValue(row);
}

bool RecordTable::eventFilter(QObject* watched, QEvent* event) {
  const bool columnHeader = watched == horizontalHeader()->viewport();
  const bool rowHeader = watched == verticalHeader()->viewport();
  if (columnHeader || rowHeader) {
    const int headerOffset = columnHeader ? 0 : horizontalHeader()->height();
    if (event->type() == QEvent::MouseButtonPress) {
      emit tablePressed(headerOffset + EventY(event));
    } else if (event->type() == QEvent::MouseButtonDblClick && columnHeader) {
      const auto* mouse = static_cast<const QMouseEvent*>(event);
      const int column = horizontalHeader()->logicalIndexAt(mouse->position().toPoint());
      if (column >= 0) emit headerDoubleClicked(column);
    }
  }
  return QTableView::eventFilter(watched, event);
}

void RecordTable::mousePressEvent(QMouseEvent* event) {
  emit tablePressed(horizontalHeader()->height() + EventY(event));
  QTableView::mousePressEvent(event);
}

void RecordTable::mouseDoubleClickEvent(QMouseEvent* event) {
  QTableView::mouseDoubleClickEvent(event);
  const QModelIndex index = indexAt(event->position().toPoint());
  if (index.isValid()) emit cellDoubleClicked(index);
}

void RecordTable::keyPressEvent(QKeyEvent* event) {
  // The view's own Ctrl+C copies the current cell only; the whole selection is copied.
  if (event->matches(QKeySequence::Copy)) {
    emit copyRequested();
    event->accept();
    return;
  }
  QTableView::keyPressEvent(event);
}

bool RecordTable::viewportEvent(QEvent* event) {
  const bool handled = QTableView::viewportEvent(event);
  if (event->type() == QEvent::Resize) emit gridResized();
  return handled;
}

}  // namespace vantrel::qt
