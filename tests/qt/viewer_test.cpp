// The viewer: its command line, its controller choice, the settings dialog, a window
// reading the virtual controller end to end, and the program itself (screenshots, and the
// advice when there is no display).

#include <QAbstractItemModel>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QProcess>
#include <QSettings>
#include <QSpinBox>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "controller_choice.h"
#include "gui_thread_post.h"
#include "settings_dialog.h"
#include "vantrel/control.h"
#include "vantrel/history/history_reader.h"
#include "vantrel/hosts/modbus/modbus_server.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/poll_event_loop.h"
#include "vantrel/scripted_prompts.h"
#include "viewer_options.h"
#include "viewer_window.h"

using namespace vantrel;
using namespace vantrel::viewer;
using namespace Qt::StringLiterals;

namespace {

ParseOutcome Parse(std::vector<std::string> args, ViewerOptions& options) {
  args.insert(args.begin(), "vantrel-viewer");
  std::vector<char*> argv;
  for (std::string& arg : args)
    argv.push_back(arg.data());
  return ParseViewerOptions(static_cast<int>(argv.size()), argv.data(), options);
}

// Runs the viewer program on the offscreen platform, or with no display at all: its exit code
// (-1 when it crashed or hung) and all it printed.
std::pair<int, QString> RunViewer(const QStringList& args, bool offscreen) {
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
    env.remove(QLatin1String(name));
  if (offscreen) env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
  QProcess viewer;
  viewer.setProcessEnvironment(env);
  viewer.setProcessChannelMode(QProcess::MergedChannels);
  viewer.start(QStringLiteral(VANTREL_VIEWER), args);
  if (!viewer.waitForFinished(60000)) viewer.kill();
  viewer.waitForFinished();
  const bool ended = viewer.exitStatus() == QProcess::NormalExit;
  return {ended ? viewer.exitCode() : -1, QString::fromLocal8Bit(viewer.readAll())};
}

// Share of the pixels of `area` that are much darker than the background: text and lines.
double InkShare(const QImage& image, const QRect& area) {
  int dark = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x)
      dark += qGray(image.pixel(x, y)) < 110 ? 1 : 0;
  }
  return static_cast<double>(dark) / (area.width() * area.height());
}

}  // namespace

class ViewerTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QCoreApplication::setOrganizationName(QStringLiteral("VantrelTests"));
    QCoreApplication::setApplicationName(QStringLiteral("viewer_test"));
    QVERIFY(settingsDir_.isValid());
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDir_.path());
  }

  // The options themselves are read as `vantrel run` reads them and used by the runs below.
  void aWrongCommandLineEndsTheProgramAndHelpSaysWhatThereIs() {
    const struct {
      std::vector<std::string> args;
      int code;
      const char* says;
    } ends[] = {{{"--size", "large"}, 2, "WIDTHxHEIGHT"},
                {{"--size", "50x50"}, 2, "WIDTHxHEIGHT"},
                {{"--index-file", "3"}, 2, "--index-file"},
                {{"--history-spool-limit", "0"}, 2, "--history-spool-limit"},
                {{"--help"}, 0, "--screenshot"}};
    for (const auto& end : ends) {
      ViewerOptions o;
      const ParseOutcome outcome = Parse(end.args, o);
      QCOMPARE(outcome.exitCode, std::optional<int>(end.code));
      QVERIFY2(outcome.message.find(end.says) != std::string::npos, outcome.message.c_str());
    }
    QCOMPARE(ParseSize("1200x800"), (std::optional<std::pair<int, int>>({1200, 800})));
  }

  void theVirtualControllerIsTheDefaultAndOthersAreRefusedWithAReason() {
    ManualEventLoop loop;
    QObject context;
    ViewerOptions sim;
    sim.recordIntervalMs = 250;
    std::string error;
    auto opened = OpenController(sim, loop, loop.Clock(), PostToThreadOf(&context), {}, error);
    QVERIFY2(opened && opened->runningAtStart, error.c_str());
    // The program writes a record every 250 ms of its clock.
    loop.Advance(1000);
    QCOMPARE(opened->embedded->Program().RecordsWritten(), int64_t{4});
    for (const auto& [controller, program, says] :
         {std::tuple{"modbus://127.0.0.1:99999", "", "port"},
          std::tuple{"serial", "", "unknown controller"},
          std::tuple{"sim", "/nonexistent/program.ini", "program.ini"}}) {
      ViewerOptions o;
      o.controller = controller;
      if (*program) o.programFile = program;
      error.clear();
      QVERIFY(!OpenController(o, loop, loop.Clock(), PostToThreadOf(&context), {}, error));
      QVERIFY2(error.find(says) != std::string::npos, error.c_str());
    }
  }

  void theSettingsDialogSetsOnlyWhatChanged() {
    ScriptedPrompts prompts;
    qt::VantrelWidget widget(prompts);
    Control& control = widget.control();
    QStringList changed;
    connect(&widget, &qt::VantrelWidget::PropertyChanged, this,
            [&](const QString& name) { changed << name; });
    SettingsDialog(control).Apply();
    QVERIFY(changed.isEmpty());
    SettingsDialog dialog(control);
    dialog.Interval()->setValue(250);
    dialog.MaxRows()->setValue(2000);
    dialog.DateStampCol()->setChecked(true);
    dialog.ExportFile()->setText(QString::fromUtf8("/tmp/\u00E9t\u00E9.xls"));
    dialog.IndexFile()->setCurrentIndex(2);
    dialog.ExportFormat()->setCurrentIndex(1);
    dialog.HistoryFile()->setText(u"/tmp/trace.db"_s);
    dialog.Apply();
    QVERIFY(std::tuple(control.Interval(), control.MaxRows(), control.DateStampCol(),
                       control.ExportFile(), control.IndexFile(), control.ExportFormat(),
                       control.HistoryFile()) ==
            std::tuple(250, 2000, true, "/tmp/\xE9t\xE9.xls", 2, 1, "/tmp/trace.db"));
    QCOMPARE(changed, (QStringList{"Interval", "MaxRows", "DateStampCol", "ExportFile", "IndexFile",
                                   "ExportFormat", "HistoryFile"}));
  }

  void aWindowReadsTheVirtualControllerKeepingItsRowsAndSettings() {
    QTemporaryDir dir;
    ViewerOptions o;  // reading the virtual controller quickly
    o.recordIntervalMs = 10;
    o.interval = 50;
    o.timeColumn = true;
    o.historyFile = dir.filePath(u"trace.db"_s).toStdString();
    o.exportFile = dir.filePath(u"trace.xlsx"_s).toStdString();
    o.exportFormat = "xlsx";
    std::string error;
    int rows = 0;
    {
      ViewerWindow window(o);
      QVERIFY2(window.Open(error), error.c_str());
      window.show();
      Control& control = window.Widget().control();
      QTRY_VERIFY_WITH_TIMEOUT(window.Widget().Table()->model()->rowCount() >= 5, 10000);
      QVERIFY(control.TimeStampCol());
      control.SetRunMode(0);
      rows = control.Table().DataRowCount();
      control.ClickExportButton();
      // The workbook was written by the viewer's exporter: the table was emptied.
      QCOMPARE(control.Table().DataRowCount(), 0);
      QVERIFY(QFileInfo(dir.filePath(u"trace.xlsx"_s)).size() > 0);
      // The settings go to the user's settings.
      control.SetMaxGraph(60);
      window.SaveProperties();
    }  // closing the window writes what the history still holds
    // Every row the table showed is in the history, though the export emptied the table.
    const auto history = vantrel::history::HistoryReader::Open(*o.historyFile, error);
    QVERIFY2(history, error.c_str());
    const auto buffers = history->Buffers(error);
    QCOMPARE(buffers.size(), size_t{1});
    QCOMPARE(buffers[0].rows, int64_t{rows});
    QCOMPARE(QSettings().value(u"Control/MaxGraph"_s).toString(), u"60"_s);
    {
      ViewerWindow next(ViewerOptions{});  // reads the user's settings again
      QVERIFY(next.Open(error));
      QCOMPARE(next.Widget().control().MaxGraph(), 60);
    }

    // A PostgreSQL URL is a server history, not a file of that name: a server that is not
    // there is refused before acquisition starts.
    o.historyFile = "postgresql:///postgres?host=/nonexistent&user=vantrel";
    ViewerWindow serverless(o);
    QVERIFY(!serverless.Open(error));
    QVERIFY2(error.find("cannot reach the history") != std::string::npos, error.c_str());
    QCOMPARE(serverless.Widget().control().ReadState(), int16_t{0});
  }

  void aWindowReadsAControllerOverModbusWithoutWaitingForIt() {
    // The pump station served on a loopback port from a thread of its own.
    SystemClock clock;
    hosts::RegisterSpace space;
    hosts::TraceProgram program(space, hosts::PumpStationProgram(), clock);
    PollEventLoop serverLoop;
    hosts::modbus::ModbusServer server(serverLoop, space, {});
    program.Install();
    program.WriteRecords(12);
    QVERIFY(server.Listen("127.0.0.1", 0));
    std::atomic<bool> stop{false};
    std::thread serving([&] {
      while (!stop)
        serverLoop.RunFor(std::chrono::milliseconds(20));
    });

    ViewerOptions o;
    o.controller = "modbus://127.0.0.1:" + std::to_string(server.Port());
    o.interval = 50;
    o.screenshot = "unused";  // the defaults, not the user's saved settings
    o.statusColumn = true;
    {
      ViewerWindow window(o);
      std::string error;
      QVERIFY2(window.Open(error), error.c_str());
      const QAbstractItemModel* model = window.Widget().Table()->model();
      QTRY_VERIFY_WITH_TIMEOUT(model->rowCount() >= 12, 10000);
      // A remote controller starts as "Disconnect" and is "Run" once it has answered.
      QCOMPARE(window.Widget().control().PCDStatus(), 2);
      QCOMPARE(window.Widget().control().RecordCount(), 12);
    }
    stop = true;
    serving.join();
  }

  // The program itself: screenshots of the table and of the graph, and what it says when it
  // cannot make them.
  void theViewerRendersScreenshotsOrSaysWhyNot() {
    QTemporaryDir dir;
    const QString table = dir.filePath(u"table.png"_s), graph = dir.filePath(u"graph.png"_s),
                  none = dir.filePath(u"none.png"_s);
    const struct {
      QStringList args;
      bool offscreen;
      int exitCode;
      QStringList says;
    } runs[] = {{{"--screenshot", table, "--after-records", "30"}, true, 0, {"30 rows shown"}},
                {{"--screenshot", graph, "--after-records", "25", "--graph-columns",
                  "Level cm,Pressure", "--size", "900x600"},
                 true,
                 0,
                 {}},
                {{"--screenshot", dir.filePath(u"nothing.png"_s), "--graph-columns", "Nothing"},
                 true,
                 1,
                 {"no data column is named \"Nothing\""}},
                // The locator's question is printed and answered No, not left waiting on a box no
                // one sees; the error that follows ends the run without waiting for rows.
                {{"--resource-path", dir.path(), "--screenshot", none},
                 true,
                 1,
                 {"The file PMP1.vtld was not found.", "answered No",
                  "ModulError 10: No description file from driver found (*.vtl)",
                  "no rows: reading stopped on error 10"}},
                // Without a display the viewer points elsewhere.
                {{}, false, 2, {"vantrel run", "QT_QPA_PLATFORM=offscreen"}}};
    for (const auto& expected : runs) {
      const auto [exitCode, output] = RunViewer(expected.args, expected.offscreen);
      QVERIFY2(exitCode == expected.exitCode, qPrintable(output));
      for (const QString& says : expected.says)
        QVERIFY2(output.contains(says), qPrintable(output));
    }
    // The window is sized for 30 rows; its table area carries text.
    const QImage image(table);
    QVERIFY(image.height() > 600 && image.width() > 700);
    QVERIFY(InkShare(image, QRect(40, 100, image.width() - 80, image.height() - 200)) > 0.02);
    QCOMPARE(QImage(graph).size(), QSize(900, 600));
    QVERIFY(!QFile::exists(none));
  }

 private:
  QTemporaryDir settingsDir_;
};

QTEST_MAIN(ViewerTest)
#include "viewer_test.moc"
