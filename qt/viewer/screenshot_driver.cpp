#include "screenshot_driver.h"

#include <QAbstractItemModel>
#include <QPixmap>
#include <QTableView>
#include <QWidget>
#include <algorithm>

#include "text_conversion.h"
#include "vantrel/control.h"
#include "vantrel/qt/vantrel_widget.h"
#include "vantrel/surface.h"

namespace vantrel::viewer {
namespace {

// Time for the chart to take the graph in and lay itself out before the shot.
constexpr int kChartSettleMs = 200;

}  // namespace

ScreenshotDriver::ScreenshotDriver(QWidget& window, qt::VantrelWidget& widget,
                                   ScreenshotRequest request)
    : window_(window), widget_(widget), request_(std::move(request)) {
  connect(widget_.Table()->model(), &QAbstractItemModel::rowsInserted, this,
          &ScreenshotDriver::CheckRows);
  // An error that stops acquisition means the rows will never come: say so at once.
  connect(&widget_, &qt::VantrelWidget::ModulError, this, [this](qint16 type) {
    const Control& control = widget_.control();
    if (triggered_ || type == kHistoryErrType ||
        (control.RunMode() != 0 && control.ReadState() >= 3)) {
      return;
    }
    triggered_ = true;
    timeout_.stop();
    emit finished(1, QStringLiteral("no rows: reading stopped on error %1").arg(type));
  });
  timeout_.setSingleShot(true);
  connect(&timeout_, &QTimer::timeout, this, [this] {
    emit finished(1, QStringLiteral("%1 rows did not arrive within %2 s")
                         .arg(request_.afterRecords)
                         .arg(request_.timeoutMs / 1000));
  });
  timeout_.start(request_.timeoutMs);
}

void ScreenshotDriver::CheckRows() {
  if (triggered_ || widget_.control().Table().DataRowCount() < request_.afterRecords) return;
  triggered_ = true;
  timeout_.stop();
  if (request_.fitRows) {
    const QSize chrome = window_.size() - widget_.size();
    window_.resize(widget_.SizeForRows(std::min(request_.afterRecords, kMostRowsFitted)) + chrome);
  }
  QString message;
  if (!request_.graphColumns.isEmpty() || request_.showGraph) {
    if (!SelectGraphColumns(message)) {
      emit finished(1, message);
      return;
    }
    widget_.control().ClickGraphButton();
    QTimer::singleShot(kChartSettleMs, this, &ScreenshotDriver::Shoot);
    return;
  }
  // The table scrolls to its newest row on the next turn.
  QTimer::singleShot(0, this, &ScreenshotDriver::Shoot);
}

bool ScreenshotDriver::SelectGraphColumns(QString& message) {
  Control& control = widget_.control();
  const TableModel& table = control.Table();
  for (const QString& caption : request_.graphColumns) {
    int found = -1;
    for (int column = kFirstTraceColumn; column < table.ColumnCount(); ++column) {
      if (qt::ToQString(table.Text(0, column)).compare(caption.trimmed(), Qt::CaseInsensitive) ==
          0) {
        found = column;
      }
    }
    if (found < 0) {
      message = QStringLiteral("no data column is named \"%1\"").arg(caption);
      return false;
    }
    // A double-click on the column's header, as the user selects it.
    if (!table.Selected(found)) {
      control.PressTable(0);
      control.DoubleClickTable(found);
    }
  }
  return true;
}

void ScreenshotDriver::Shoot() {
  const QPixmap shot = window_.grab();
  if (shot.isNull() || !shot.save(request_.file, "PNG")) {
    emit finished(1, QStringLiteral("cannot write %1").arg(request_.file));
    return;
  }
  emit finished(0, QStringLiteral("%1 rows shown, window written to %2")
                       .arg(widget_.control().Table().DataRowCount())
                       .arg(request_.file));
}

}  // namespace vantrel::viewer
