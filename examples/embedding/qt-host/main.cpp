// qt-host: a window showing the Vantrel widget, reading the virtual controller that comes
// with Vantrel (the pump station).
//
//   qt-host [--rows N]   (--rows: close the window once N rows have arrived, e.g. to try it
//                         without a screen: QT_QPA_PLATFORM=offscreen qt-host --rows 5)

#include <vantrel/control.h>
#include <vantrel/hosts/embedded_controller.h>
#include <vantrel/hosts/examples_directory.h>
#include <vantrel/hosts/pump_station.h>
#include <vantrel/qt/qt_timers.h>
#include <vantrel/qt/vantrel_widget.h>

#include <QApplication>
#include <QMainWindow>
#include <QMetaObject>
#include <QStatusBar>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  int closeAfterRows = 0;
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--rows") == 0) closeAfterRows = std::atoi(argv[i + 1]);
  }

  QMainWindow window;
  window.setWindowTitle(QStringLiteral("Pump station"));
  auto* widget = new vantrel::qt::VantrelWidget(&window);
  window.setCentralWidget(widget);
  vantrel::Control& control = widget->control();

  // The virtual controller runs on timers of its own, so that it goes on writing records
  // while one of the control's message boxes is open (the widget holds its own timers then).
  vantrel::qt::QtTimerFactory controllerTimers;
  vantrel::SystemClock clock;
  vantrel::hosts::LinkHandlers handlers;
  handlers.answer = [&control](std::vector<int32_t> words) { control.SetDataBlock(words); };
  // Answers come back as queued calls on the window's (the GUI) thread.
  auto postToWindow = [&window](std::function<void()> task) {
    QMetaObject::invokeMethod(&window, std::move(task), Qt::QueuedConnection);
  };
  vantrel::hosts::EmbeddedController controller(controllerTimers, clock, postToWindow,
                                                {vantrel::hosts::PumpStationProgram(), 100},
                                                std::move(handlers));

  // The read requests go to the controller; its answers come back through SetDataBlock.
  QObject::connect(
      widget, &vantrel::qt::VantrelWidget::ReadPCDReg, &window,
      [&controller](qint16 first, qint16 count) { controller.ReadRegisters(first, count); });
  QObject::connect(widget, &vantrel::qt::VantrelWidget::ReadPCDDB, &window,
                   [&controller](qint16 block, qint16 offset, qint16 count) {
                     controller.ReadDataBlock(block, offset, count);
                   });
  // Once the start register is read, refresh (after the signal has returned).
  bool refreshing = false;
  QObject::connect(widget, &vantrel::qt::VantrelWidget::Status, &window,
                   [widget, &refreshing](qint16 state) {
                     if (state != 2 || refreshing) return;
                     refreshing = true;
                     QTimer::singleShot(0, widget, [widget] { widget->control().SetRunMode(2); });
                   });
  QObject::connect(
      widget, &vantrel::qt::VantrelWidget::ModulError, &window,
      [&window](qint16 type, const QString& text) {
        window.statusBar()->showMessage(QStringLiteral("Error %1: %2").arg(type).arg(text));
      });
  int rows = 0;
  QObject::connect(widget, &vantrel::qt::VantrelWidget::OutputLine, &window,
                   [&window, &rows, closeAfterRows](const QString& line) {
                     window.statusBar()->showMessage(line);
                     if (++rows == closeAfterRows) QTimer::singleShot(0, &window, &QWidget::close);
                   });
  // The controller program asks its host to shut down.
  QObject::connect(widget, &vantrel::qt::VantrelWidget::PCDCmd, &window, [&window](qint16 cmd) {
    if (cmd == 9) QTimer::singleShot(0, &window, &QWidget::close);
  });

  control.InitProperties();
#ifdef VANTREL_EXAMPLES_DIR
  const std::string examples = VANTREL_EXAMPLES_DIR;
#else
  const std::string examples = vantrel::hosts::ExamplesDirectory();
#endif
  control.SetResourcePath(examples);
  control.SetSymbFile(examples + "/pumps_symbols.sym");
  control.SetStartRegister(controller.Program().Config().startRegister);
  control.SetDateStampCol(true);
  control.SetTimeStampCol(true);
  control.SetPCDStatusCol(true);
  control.SetPCDStatus(2);
  control.Start();

  window.resize(1100, 600);
  window.show();
  const int code = QApplication::exec();
  if (closeAfterRows > 0) std::printf("%d rows shown\n", rows);
  return code;
}
