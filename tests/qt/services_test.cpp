// The platform services the widget gives the control: Qt timers, Qt prompts (message
// boxes, the file dialog and the self-closing shut-down notice), the property bag in
// QSettings, and the hand-over of answers from a worker thread to the GUI thread.

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <fstream>
#include <functional>
#include <thread>

#include "gui_thread_post.h"
#include "qt_prompts.h"
#include "shut_down_dialog.h"
#include "vantrel/qt/qt_timers.h"
#include "vantrel/qt/settings_property_bag.h"

using namespace vantrel;
using namespace vantrel::qt;

namespace {

// Runs `act` on the next modal dialog that comes up.
void OnNextModal(std::function<void(QWidget*)> act) {
  auto* poll = new QTimer;
  QObject::connect(poll, &QTimer::timeout, poll, [poll, act] {
    if (QWidget* modal = QApplication::activeModalWidget()) {
      poll->stop();
      poll->deleteLater();
      act(modal);
    }
  });
  poll->start(5);
}

}  // namespace

class ServicesTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QVERIFY(settingsDir_.isValid());
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDir_.path());
  }

  void aTimerTicksOnlyWhileEnabledWithAPeriod() {
    QtTimerFactory factory;
    auto timer = factory.CreateTimer();
    int ticks = 0;
    timer->SetTickHandler([&] { ++ticks; });
    timer->SetInterval(10);
    QTest::qWait(50);
    QCOMPARE(ticks, 0);
    timer->SetEnabled(true);
    QTRY_VERIFY(ticks >= 2);
    timer->SetEnabled(false);
    const int stopped = ticks;
    QTest::qWait(50);
    QCOMPARE(ticks, stopped);
    // A period of 0 never ticks, even enabled.
    timer->SetInterval(0);
    timer->SetEnabled(true);
    QTest::qWait(50);
    QCOMPARE(ticks, stopped);
  }

  void aMessageBoxShowsTheTitleAndTheTextWithLineBreaks() {
    QWidget parent;
    QtTimerFactory factory;
    QtPrompts prompts(&parent, &factory);
    auto timer = factory.CreateTimer();
    int ticks = 0;
    timer->SetTickHandler([&] { ++ticks; });
    timer->SetInterval(5);
    timer->SetEnabled(true);
    QString title, text;
    int ticksWhileShown = -1;
    OnNextModal([&](QWidget* modal) {
      auto* box = qobject_cast<QMessageBox*>(modal);
      QVERIFY(box != nullptr);
      title = box->windowTitle();
      text = box->text();
      const int before = ticks;
      QTest::qWait(40);
      ticksWhileShown = ticks - before;
      box->button(QMessageBox::Ok)->click();
    });
    const MessageResult result = prompts.ShowMessage(
        "No data columns selected for the graph !\r\rDouble-click on the data column header to "
        "select it.",
        "Show graph", MessageIcon::Information, MessageButtons::Ok);
    QCOMPARE(result, MessageResult::Ok);
    QCOMPARE(title, QStringLiteral("Show graph"));
    QCOMPARE(text, QStringLiteral("No data columns selected for the graph !\n\nDouble-click on "
                                  "the data column header to select it."));
    // The control's timers do not tick while one of its prompts is up, and tick again after.
    QCOMPARE(ticksWhileShown, 0);
    const int ticksAtClose = ticks;
    QTRY_VERIFY(ticks > ticksAtClose);
  }

  void aYesNoQuestionAnswersWithTheButtonPressed() {
    QtPrompts prompts(nullptr, nullptr);
    for (const auto button : {QMessageBox::Yes, QMessageBox::No}) {
      OnNextModal(
          [button](QWidget* modal) { qobject_cast<QMessageBox*>(modal)->button(button)->click(); });
      const MessageResult answer =
          prompts.ShowMessage("Search?", "Vantrel", MessageIcon::Question, MessageButtons::YesNo);
      QCOMPARE(answer, button == QMessageBox::Yes ? MessageResult::Yes : MessageResult::No);
    }
  }

  void theFileDialogReturnsTheChosenFileOrNothing() {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("PMP1_pumps.vtl"));
    std::ofstream(file.toStdString()) << "[VANTREL]\n";
    QtPrompts prompts(nullptr, nullptr);
    OnNextModal([&](QWidget* modal) {
      auto* dialog = qobject_cast<QFileDialog*>(modal);
      QVERIFY(dialog != nullptr);
      dialog->selectFile(file);
      static_cast<QDialog*>(dialog)->accept();
    });
    const auto chosen =
        prompts.ChooseFileToOpen({"", ".vtld", "Vantrel Files (*.vtl,*.vtld)|*.vtl,*.vtld", true});
    QVERIFY(chosen.has_value());
    QCOMPARE(QString::fromStdString(*chosen), file);

    OnNextModal([](QWidget* modal) { qobject_cast<QFileDialog*>(modal)->reject(); });
    QVERIFY(!prompts.ChooseFileToOpen({"", ".vtld", "All (*.*)|*.*", true}).has_value());
  }

  void fileFiltersAndPromptTextsAreConverted() {
    QCOMPARE(FileDialogFilter("Vantrel Files (*.vtl,*.vtld)|*.vtl,*.vtld"),
             QStringLiteral("Vantrel Files (*.vtl *.vtld)"));
    QCOMPARE(FileDialogFilter("Text|*.txt;*.ini|All|*.*"),
             QStringLiteral("Text (*.txt *.ini);;All (*.*)"));
    QCOMPARE(PromptText("File a.vtl\r\r\xE9t\xE9"),
             QString::fromUtf8("File a.vtl\n\n\u00E9t\u00E9"));
  }

  void theShutDownNoticeClosesItselfAndIsShownAgain() {
    QWidget parent;
    QtPrompts prompts(&parent, nullptr);
    QString caption, label1, lblShutDown;
    OnNextModal([&](QWidget* modal) {
      caption = modal->windowTitle();
      label1 = modal->findChild<QLabel*>(QStringLiteral("Label1"))->text();
      lblShutDown = modal->findChild<QLabel*>(QStringLiteral("lblShutDown"))->text();
    });
    // Should the notice never close, this ends the test instead of hanging it.
    bool forced = false;
    QTimer::singleShot(10000, [&] {
      if (QWidget* modal = QApplication::activeModalWidget()) {
        forced = true;
        modal->close();
      }
    });
    prompts.ShowShutDownNotice("Form1", "Vantrel Application will shut down...", "Shutdown Command",
                               60);
    QVERIFY(!forced);
    QCOMPARE(caption, QStringLiteral("Form1"));
    QCOMPARE(label1, QStringLiteral("Vantrel Application will shut down..."));
    QCOMPARE(lblShutDown, QStringLiteral("Shutdown Command"));

    prompts.ShowShutDownNotice("Form1", "again", "Shutdown Command", 30);
    QVERIFY(!forced);
    const ShutDownDialog* notice = prompts.ShutDownNotice();
    QVERIFY(notice != nullptr);
    QCOMPARE(notice->Label1()->text(), QStringLiteral("again"));
  }

  void propertiesAreKeptInSettingsAsText() {
    QSettings settings(settingsDir_.filePath(QStringLiteral("bag.ini")), QSettings::IniFormat);
    SettingsPropertyBag bag(settings);
    bag.WriteProperty("AutoExport", true, false);
    bag.WriteProperty("Interval", int32_t{250}, int32_t{1000});
    bag.WriteProperty("ExportFile", std::string("C:\\t\\\xE9t\xE9.xls"), std::string());
    bag.WriteProperty("MaxRows", int32_t{500}, int32_t{500});
    QCOMPARE(settings.value("AutoExport").toString(), QStringLiteral("True"));
    QCOMPARE(settings.value("Interval").toString(), QStringLiteral("250"));
    QCOMPARE(settings.value("ExportFile").toString(),
             QString::fromUtf8("C:\\t\\\u00E9t\u00E9.xls"));
    QVERIFY(!settings.contains("MaxRows"));

    QCOMPARE(bag.ReadProperty("Interval", int32_t{1000}), vantrel::PropertyValue(int32_t{250}));
    QCOMPARE(bag.ReadProperty("ExportFile", std::string()),
             vantrel::PropertyValue(std::string("C:\\t\\\xE9t\xE9.xls")));
    QCOMPARE(bag.ReadProperty("MaxRows", int32_t{500}), vantrel::PropertyValue(int32_t{500}));
    // Stored texts are read leniently, and what cannot be read gives the default.
    settings.setValue("Simulation", "-1");
    settings.setValue("DisplayMode", "2 modes");
    QCOMPARE(bag.ReadProperty("Simulation", false), vantrel::PropertyValue(true));
    QCOMPARE(bag.ReadProperty("DisplayMode", int32_t{1}), vantrel::PropertyValue(int32_t{1}));

    // A written setting is removed again once it returns to its default.
    bag.WriteProperty("AutoExport", false, false);
    QVERIFY(!settings.contains("AutoExport"));
  }

  void answersPostedFromAWorkerThreadRunOnTheGuiThread() {
    QObject context;
    const hosts::PostToHost post = viewer::PostToThreadOf(&context);
    QThread* ranOn = nullptr;
    std::vector<int32_t> received;
    std::thread worker([&] {
      std::vector<int32_t> words{1, 2, 3};
      post([&, words] {
        ranOn = QThread::currentThread();
        received = words;
      });
    });
    worker.join();
    // Posted, not run: it waits for the GUI thread's next turn.
    QVERIFY(ranOn == nullptr);
    QTRY_VERIFY(ranOn != nullptr);
    QCOMPARE(ranOn, QThread::currentThread());
    QCOMPARE(received, (std::vector<int32_t>{1, 2, 3}));
  }

 private:
  QTemporaryDir settingsDir_;
};

QTEST_MAIN(ServicesTest)
#include "services_test.moc"
