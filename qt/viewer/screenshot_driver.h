#pragma once
// Takes the viewer's screenshot: once the table shows the rows asked for, optionally
// selects graph columns and switches to the chart, renders the window into a PNG file and
// reports the exit status. Gives up (status 1) when the rows do not come in time or an
// error stops the reading.

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

class QWidget;

namespace vantrel::qt {
class VantrelWidget;
}

namespace vantrel::viewer {

struct ScreenshotRequest {
  QString file;
  int afterRecords = 30;
  QStringList graphColumns;  // captions; naming any shows the graph
  bool showGraph = false;
  int timeoutMs = 60000;
  // Size the window so that the table shows every row of the shot (at most kMostRowsFitted).
  bool fitRows = true;
};

inline constexpr int kMostRowsFitted = 40;

class ScreenshotDriver final : public QObject {
  Q_OBJECT

 public:
  ScreenshotDriver(QWidget& window, qt::VantrelWidget& widget, ScreenshotRequest request);

 signals:
  // 0 when the file was written; 1 otherwise, with the reason.
  void finished(int exitCode, const QString& message);

 private:
  void CheckRows();
  bool SelectGraphColumns(QString& message);
  void Shoot();

  QWidget& window_;
  qt::VantrelWidget& widget_;
  ScreenshotRequest request_;
  QTimer timeout_;
  bool triggered_ = false;
};

}  // namespace vantrel::viewer
