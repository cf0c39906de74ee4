// The widget's units that stand alone: text conversion, the title's geometry, the table
// model adapter, clipboard text, the value conversions, and the platform services the
// widget gives the control (Qt timers, Qt prompts, the property bag in QSettings, and the
// hand-over of answers from a worker thread to the GUI thread).

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <fstream>
#include <functional>
#include <thread>

#include "clipboard_text.h"
#include "gui_thread_post.h"
#include "qt_prompts.h"
#include "record_table_model.h"
#include "shut_down_dialog.h"
#include "surface_geometry.h"
#include "text_conversion.h"
#include "value_panel.h"
#include "vantrel/qt/qt_timers.h"
#include "vantrel/qt/settings_property_bag.h"
#include "vantrel/table_model.h"

using namespace vantrel;
using namespace vantrel::qt;
using namespace Qt::StringLiterals;

namespace {

// Appends a row of text cells given as tab-separated text.
void AddItem(TableModel& table, const std::string& tabSeparated) {
  TableRow row;
  size_t start = 0;
  while (true) {
    const size_t tab = tabSeparated.find('\t', start);
    CellRow& part = row.stamps.Size() < kFirstTraceColumn ? row.stamps : row.cells;
    part.Append(tabSeparated.substr(start, tab - start), {}, 0, {}, {});
    if (tab == std::string::npos) break;
    start = tab + 1;
  }
  table.AddRow(std::move(row));
}

// A table as the control builds it: record number, three stamp columns and two data columns.
TableModel SmallTable() {
  TableModel table;
  table.SetColumnCount(6);
  const char* captions[] = {"", "PC Date", "PC Time", "PCD", "Level", "Flow"};
  for (int c = 0; c < 6; ++c)
    table.SetText(0, c, captions[c]);
  return table;
}

QStringList Numbers(const QAbstractItemModel& model) {
  QStringList shown;
  for (int row = 0; row < model.rowCount(); ++row)
    shown << model.headerData(row, Qt::Vertical).toString();
  return shown;
}

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

class UnitsTest : public QObject {
  Q_OBJECT

 private slots:
  void textsCodesAndValuesConvert() {
    // 0x80 is the euro sign in Windows-1252, 0xE9 an e with acute accent (as in Latin-1).
    QCOMPARE(ToQString("\x80 \xE9t\xE9"), QString::fromUtf8("\u20AC \u00E9t\u00E9"));
    QCOMPARE(FromQString(QString::fromUtf8("\u20AC \u00E9t\u00E9")), std::string("\x80 \xE9t\xE9"));
    // The title never gets a negative width.
    QCOMPARE(PlaceSurface(6000, 4000).title, QRect(144, 8, 236, 18));
    QCOMPARE(PlaceSurface(300, 600).title.width(), 0);
    // 9, "general", and codes out of range.
    QCOMPARE(AlignmentFromCode(9), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(ConvertRawValue(0x4C4F5437).characters, u"'LOT7'"_s);
    const RawValueTexts negative = ConvertRawValue(-2);
    QCOMPARE((QStringList{negative.decimal, negative.hexadecimal, negative.binary}),
             (QStringList{u"-2"_s, u"FFFFFFFE"_s, u"11111111 11111111 11111111 11111110"_s}));
  }

  void theModelFollowsAppendsRemovalsChangesAndResets() {
    TableModel table = SmallTable();
    RecordTableModel model(table);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy header(&model, &QAbstractItemModel::headerDataChanged);
    for (int i = 1; i <= 3; ++i)
      AddItem(table, std::to_string(i) + "\ta\tb\tc\td\te");
    // Appended rows are told on the next turn, together.
    QCOMPARE(model.rowCount(), 0);
    QTRY_COMPARE(model.rowCount(), 3);
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.last().mid(1), (QVariantList{0, 2}));
    table.RemoveRow(2);  // not at the front: told at once
    QCOMPARE(removed.last().mid(1), (QVariantList{1, 1}));
    QCOMPARE(Numbers(model), (QStringList{u"1"_s, u"3"_s}));
    table.SetText(2, 4, "x");
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.last().at(0).toModelIndex(), model.index(1, 3));
    // A column's alignment code reaches its cells.
    table.SetColumnAlignment(4, 7);
    QCOMPARE(model.index(1, 3).data(Qt::TextAlignmentRole).value<Qt::Alignment>(),
             Qt::AlignRight | Qt::AlignVCenter);
    table.SetText(0, 5, "Flow l/s");
    QCOMPARE(header.last().at(1).toInt(), 4);
    table.SetRowCount(1);
    model.Flush();
    QCOMPARE(model.rowCount(), 0);
    table.SetColumnCount(8);
    QCOMPARE(reset.count(), 1);
    QCOMPARE(model.columnCount(), 7);
    model.Detach();
    AddItem(table, "9");
    QCOMPARE(model.rowCount(), 0);
  }

  void rowsDroppedAndAppendedAtTheLimitAreToldAsOneRemovalAndOneInsertion() {
    TableModel table = SmallTable();
    RecordTableModel model(table);
    for (int i = 1; i <= 4; ++i)
      AddItem(table, std::to_string(i));
    model.Flush();
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    // A table at its limit of 4 rows: each row appended drops the oldest first.
    const auto append = [&table](int from, int to) {
      for (int i = from; i <= to; ++i) {
        table.RemoveRow(1);
        AddItem(table, std::to_string(i));
      }
    };
    append(5, 7);
    // Until told, the views see the rows they know, the dropped ones empty.
    QCOMPARE(Numbers(model), (QStringList{QString(), QString(), QString(), u"4"_s}));
    model.Flush();
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.last().mid(1), (QVariantList{0, 2}));
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.last().mid(1), (QVariantList{1, 3}));
    QCOMPARE(Numbers(model), (QStringList{u"4"_s, u"5"_s, u"6"_s, u"7"_s}));
    // More rows dropped than were told: the appended ones untold are dropped with them.
    append(8, 13);
    model.Flush();
    QCOMPARE(Numbers(model), (QStringList{u"10"_s, u"11"_s, u"12"_s, u"13"_s}));
  }

  void timersTickWhileEnabledWithAPeriodButNotUnderAPrompt() {
    QWidget parent;
    QtTimerFactory factory;
    QtPrompts prompts(&parent, &factory);
    auto timer = factory.CreateTimer();
    int ticks = 0;
    timer->SetTickHandler([&] { ++ticks; });
    timer->SetInterval(5);
    timer->SetEnabled(true);
    QTRY_VERIFY(ticks >= 2);
    QStringList shown;
    int ticksWhileShown = -1;
    OnNextModal([&](QWidget* modal) {
      auto* box = qobject_cast<QMessageBox*>(modal);
      shown << box->windowTitle() << box->text();
      const int before = ticks;
      QTest::qWait(40);
      ticksWhileShown = ticks - before;
      box->button(QMessageBox::Ok)->click();
    });
    QCOMPARE(prompts.ShowMessage("No data columns !\r\rDouble-click \xE9", "Show graph",
                                 MessageIcon::Information, MessageButtons::Ok),
             MessageResult::Ok);
    QCOMPARE(shown, (QStringList{u"Show graph"_s,
                                 QString::fromUtf8("No data columns !\n\nDouble-click \u00E9")}));
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
    // Disabled, or with a period of 0 though enabled, a timer does not tick.
    timer->SetEnabled(false);
    const int stopped = ticks;
    QTest::qWait(50);
    timer->SetInterval(0);
    timer->SetEnabled(true);
    QTest::qWait(50);
    QCOMPARE(ticks, stopped);
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
    QCOMPARE(FileDialogFilter("Vantrel Files (*.vtl,*.vtld)|*.vtl,*.vtld") + "/" +
                 FileDialogFilter("Text|*.txt;*.ini|All|*.*"),
             u"Vantrel Files (*.vtl *.vtld)/Text (*.txt *.ini);;All (*.*)"_s);
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
    QTemporaryDir dir;
    QSettings settings(dir.filePath(u"bag.ini"_s), QSettings::IniFormat);
    SettingsPropertyBag bag(settings);
    const std::string file("C:\\t\\\xE9t\xE9.xls");
    bag.WriteProperty("AutoExport", true, false);
    bag.WriteProperty("Interval", int32_t{250}, int32_t{1000});
    bag.WriteProperty("ExportFile", file, std::string());
    bag.WriteProperty("MaxRows", int32_t{500}, int32_t{500});
    QCOMPARE(
        (QStringList{settings.value("AutoExport").toString(), settings.value("Interval").toString(),
                     settings.value("ExportFile").toString()}),
        (QStringList{u"True"_s, u"250"_s, QString::fromUtf8("C:\\t\\\u00E9t\u00E9.xls")}));
    QVERIFY(!settings.contains("MaxRows"));
    QCOMPARE(bag.ReadProperty("ExportFile", std::string()), PropertyValue(file));
    QCOMPARE(bag.ReadProperty("MaxRows", int32_t{500}), PropertyValue(int32_t{500}));
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
};

QTEST_MAIN(UnitsTest)
#include "units_test.moc"
