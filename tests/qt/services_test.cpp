// The platform services the widget gives the control: Qt timers, Qt prompts (message
// boxes, the file dialog and the self-closing shut-down notice), the property bag in
// QSettings, and the hand-over of answers from a worker thread to the GUI thread.

#include <QApplication>
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
using namespace Qt::StringLiterals;

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
    // A period of 0 never ticks, even enabled.
    timer->SetInterval(0);
    timer->SetEnabled(true);
    QTest::qWait(50);
    QCOMPARE(ticks, stopped);
  }

  void messageBoxesShowTheTextsAndAnswerWithTheButtonPressed() {
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
      title = box->windowTitle();
      text = box->text();
      const int before = ticks;
      QTest::qWait(40);
      ticksWhileShown = ticks - before;
      box->button(QMessageBox::Ok)->click();
    });
    QCOMPARE(prompts.ShowMessage("No data columns !\r\rDouble-click \xE9", "Show graph",
                                 MessageIcon::Information, MessageButtons::Ok),
             MessageResult::Ok);
    QCOMPARE(title, u"Show graph"_s);
    QCOMPARE(text, QString::fromUtf8("No data columns !\n\nDouble-click \u00E9"));
    // The control's timers do not tick while one of its prompts is up, and tick again after.
    QCOMPARE(ticksWhileShown, 0);
    const int ticksAtClose = ticks;
    QTRY_VERIFY(ticks > ticksAtClose);

    for (const auto button : {QMessageBox::Yes, QMessageBox::No}) {
      OnNextModal(
          [button](QWidget* modal) { qobject_cast<QMessageBox*>(modal)->button(button)->click(); });
      QCOMPARE(
          prompts.ShowMessage("Search?", "Vantrel", MessageIcon::Question, MessageButtons::YesNo),
          button == QMessageBox::Yes ? MessageResult::Yes : MessageResult::No);
    }
  }

  void theFileDialogReturnsTheChosenFileOrNothing() {
    QTemporaryDir dir;
    const QString file = dir.filePath(u"PMP1_pumps.vtl"_s);
    std::ofstream(file.toStdString()) << "[VANTREL]\n";
    QtPrompts prompts(nullptr, nullptr);
    OnNextModal([&](QWidget* modal) {
      auto* dialog = qobject_cast<QFileDialog*>(modal);
      dialog->selectFile(file);
      static_cast<QDialog*>(dialog)->accept();
    });
    QCOMPARE(prompts.ChooseFileToOpen({"", ".vtld", "Vantrel Files (*.vtl)|*.vtl", true}),
             std::optional<std::string>(file.toStdString()));
    OnNextModal([](QWidget* modal) { qobject_cast<QFileDialog*>(modal)->reject(); });
    QVERIFY(!prompts.ChooseFileToOpen({"", ".vtld", "All (*.*)|*.*", true}).has_value());
    QCOMPARE(FileDialogFilter("Vantrel Files (*.vtl,*.vtld)|*.vtl,*.vtld"),
             u"Vantrel Files (*.vtl *.vtld)"_s);
    QCOMPARE(FileDialogFilter("Text|*.txt;*.ini|All|*.*"), u"Text (*.txt *.ini);;All (*.*)"_s);
  }

  void theShutDownNoticeClosesItselfAndIsShownAgain() {
    QWidget parent;
    QtPrompts prompts(&parent, nullptr);
    QStringList shown;
    OnNextModal([&](QWidget* modal) {
      shown << modal->windowTitle() << modal->findChild<QLabel*>(u"Label1"_s)->text()
            << modal->findChild<QLabel*>(u"lblShutDown"_s)->text();
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
    QCOMPARE(shown, (QStringList{u"Form1"_s, u"Vantrel Application will shut down..."_s,
                                 u"Shutdown Command"_s}));
    prompts.ShowShutDownNotice("Form1", "again", "Shutdown Command", 30);
    QVERIFY(!forced);
    QCOMPARE(prompts.ShutDownNotice()->Label1()->text(), u"again"_s);
  }

  void propertiesAreKeptInSettingsAsTextUnlessAtTheirDefault() {
    QSettings settings(settingsDir_.filePath(u"bag.ini"_s), QSettings::IniFormat);
    SettingsPropertyBag bag(settings);
    const std::string file("C:\\t\\\xE9t\xE9.xls");
    bag.WriteProperty("AutoExport", true, false);
    bag.WriteProperty("Interval", int32_t{250}, int32_t{1000});
    bag.WriteProperty("ExportFile", file, std::string());
    bag.WriteProperty("MaxRows", int32_t{500}, int32_t{500});
    QCOMPARE(settings.value("AutoExport").toString(), u"True"_s);
    QCOMPARE(settings.value("Interval").toString(), u"250"_s);
    QCOMPARE(settings.value("ExportFile").toString(),
             QString::fromUtf8("C:\\t\\\u00E9t\u00E9.xls"));
    QVERIFY(!settings.contains("MaxRows"));
    QCOMPARE(bag.ReadProperty("ExportFile", std::string()), vantrel::PropertyValue(file));
    QCOMPARE(bag.ReadProperty("MaxRows", int32_t{500}), vantrel::PropertyValue(int32_t{500}));
    bag.WriteProperty("AutoExport", false, false);
    QVERIFY(!settings.contains("AutoExport"));
  }

  void answersPostedFromAWorkerThreadRunOnTheGuiThread() {
    QObject context;
    const hosts::PostToHost post = viewer::PostToThreadOf(&context);
    QThread* ranOn = nullptr;
    std::thread worker([&] { post([&] { ranOn = QThread::currentThread(); }); });
    worker.join();
    // Posted, not run: it waits for the GUI thread's next turn.
    QVERIFY(ranOn == nullptr);
    QTRY_COMPARE(ranOn, QThread::currentThread());
  }

 private:
  QTemporaryDir settingsDir_;
};

QTEST_MAIN(ServicesTest)
#include "services_test.moc"
