#pragma once
// VantrelWidget: one trace-viewer control on a Qt form. The widget presents the control's
// surface (frame, record table, chart, buttons, title, status line, activity indicator and
// counters), lays it out on every resize, and gives the control its platform: Qt timers,
// Qt message boxes and dialogs (or prompts a host substitutes), and the widget's font as
// the ambient font.
//
// A host configures the control through control(), answers ReadPCDReg / ReadPCDDB by
// calling SetDataBlock (inside the signal or later), and hears the control's ten events as
// signals. Everything runs on the widget's thread.

#include <QList>
#include <QWidget>
#include <cstdint>
#include <memory>

class QChartView;
class QFrame;
class QLabel;
class QPushButton;
class QSettings;
class QTableView;

namespace vantrel {
class Control;
class Prompts;
class TimerFactory;
}  // namespace vantrel

namespace vantrel::qt {

class QtTimerFactory;
class ValuePanel;

class VantrelWidget : public QWidget {
  Q_OBJECT

 public:
  // The control's prompts are Qt message boxes and dialogs.
  explicit VantrelWidget(QWidget* parent = nullptr);
  // The control's prompts go to `prompts` (a headless host or a test), which must outlive
  // the widget.
  explicit VantrelWidget(Prompts& prompts, QWidget* parent = nullptr);
  ~VantrelWidget() override;
  VantrelWidget(const VantrelWidget&) = delete;
  VantrelWidget& operator=(const VantrelWidget&) = delete;

  Control& control();
  const Control& control() const;
  // The timers the control runs on; a host may create its own timers from it too.
  QtTimerFactory& Timers();

  // The control's property bag in QSettings, under the settings' current group.
  void ReadProperties(QSettings& settings);
  void WriteProperties(QSettings& settings) const;

  // Lays the surface out for a control of `width` x `height` twips (resizing does this with
  // the widget's size at 15 twips per pixel).
  void LayOutTwips(int32_t width, int32_t height);
  // A size that shows `rows` data rows and every visible column of the table.
  QSize SizeForRows(int rows) const;

  // Columns narrower than their caption or their widest text are drawn wider (the control's
  // widths stay as they are); a column the user resized keeps the user's width. On by
  // default.
  void SetFitColumnsToContents(bool fit);

  // The surface's parts, for hosts that decorate them and for tests.
  QFrame* Frame() const;
  QTableView* Table() const;
  QChartView* Chart() const;
  QPushButton* GraphButton() const;
  QPushButton* ExportButton() const;
  QPushButton* InfoButton() const;
  QLabel* TitleLabel() const;
  QLabel* StatusLabel() const;
  QLabel* RecordCountLabel() const;
  QLabel* RowCountLabel() const;
  QWidget* ActivityShape() const;
  // The value conversion panel, once a data cell has been double-clicked.
  ValuePanel* ValuePanelWidget() const;

 public slots:
  // The DataBlock inlet: the host's answer to a read request, the first word asked for
  // first.
  void SetDataBlock(const QList<qint32>& values);
  void Start();
  void Reset();
  void Clear();
  void Refresh();
  // Copies the selected cells of the table to the clipboard as tab-separated text.
  void CopySelection();

 signals:
  // The control's events, in the order the control declares them.
  void Click();
  void DblClick();
  void Resize();
  void NewExportFile();
  void ReadPCDReg(qint16 RegisterNumber, qint16 NumberToRead);
  void ReadPCDDB(qint16 DBNumber, qint16 DBOffset, qint16 NumberToRead);
  void ModulError(qint16 ErrType, const QString& ErrMessage);
  void OutputLine(const QString& DataLine);
  void Status(qint16 ReadStatus);
  void PCDCmd(qint16 Cmd);
  // A property changed and should be saved with the host's settings.
  void PropertyChanged(const QString& name);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  struct Impl;
  class Host;

  VantrelWidget(Prompts* prompts, QWidget* parent);
  void BuildSurface();
  void SynchronizeSurface();
  void ApplyTableFont();
  void ReportGridHeight();
  void SynchronizeLater();
  void RunPending();
  void OnTablePressed(int y);
  void OnHeaderDoubleClicked(int modelColumn);
  void OnCellDoubleClicked(int modelRow, int modelColumn);

  std::unique_ptr<Impl> d_;
};

}  // namespace vantrel::qt
