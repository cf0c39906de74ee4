// The widget driven as a host and a user drive it, over the bundled pump-station trace
// program in memory: rows as the host answers, the labels, header selection and the graph,
// the export, the layout, column widths, clipboard copy and the value panel.

#include <QApplication>
#include <QCategoryAxis>
#include <QChartView>
#include <QClipboard>
#include <QFile>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QLineSeries>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include "graph_view.h"
#include "record_table.h"
#include "support/temp_dir.h"
#include "value_panel.h"
#include "vantrel/clock.h"
#include "vantrel/control.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/qt/vantrel_widget.h"
#include "vantrel/scripted_prompts.h"

using namespace Qt::StringLiterals;
using vantrel::qt::VantrelWidget;

namespace {

// A widget reading the pump-station program from registers in memory: read requests are
// answered inside the signal, or a turn later through the DataBlock slot. The program writes
// records only when told; message boxes are recorded, never shown.
struct Rig {
  Rig() : program(space, vantrel::hosts::PumpStationProgram(), clock), widget(prompts) {
    program.Install();
    QObject::connect(&widget, &VantrelWidget::ReadPCDReg, &widget, [this](qint16 first, qint16 n) {
      const std::vector<int32_t> words = space.ReadRegisters(first, n);
      if (!answerLater) return widget.control().SetDataBlock(words);
      const QList<qint32> block(words.begin(), words.end());
      QMetaObject::invokeMethod(
          &widget, [this, block] { widget.SetDataBlock(block); }, Qt::QueuedConnection);
    });
    control().SetResourcePath(VANTREL_EXAMPLES_DIR);
    control().SetSymbFile(VANTREL_EXAMPLES_DIR "/pumps_symbols.sym");
    control().SetStartRegister(program.Config().startRegister);
    control().SetInterval(20);
    control().SetPCDStatus(2);
    widget.resize(1000, 600);
  }
  vantrel::Control& control() { return widget.control(); }
  QTableView* table() { return widget.Table(); }
  QAbstractItemModel* model() { return widget.Table()->model(); }

  // Starts the control and switches it to refreshing; true once it polls the counters.
  bool StartRefreshing() {
    widget.Start();
    if (!QTest::qWaitFor([this] { return control().ReadState() == 2; }, 5000)) return false;
    control().SetRunMode(2);
    return QTest::qWaitFor([this] { return control().ReadState() >= 3; }, 5000);
  }
  // Lets the program write `count` records and waits until the table shows `rows` rows.
  bool WriteAndWait(int count, int rows) {
    program.WriteRecords(count);
    return QTest::qWaitFor([&] { return model()->rowCount() >= rows; }, 5000);
  }
  int Column(const QString& caption) {
    for (int column = 0; column < model()->columnCount(); ++column) {
      if (model()->headerData(column, Qt::Horizontal).toString() == caption) return column;
    }
    return -1;
  }
  QString Cell(int row, int column) {
    return model()->data(model()->index(row, column)).toString();
  }
  QString Number(int row) { return model()->headerData(row, Qt::Vertical).toString().trimmed(); }
  // A double-click comes as a press (which tells the control where the mouse went down), a
  // release and the double-click itself; on a header section, or on a cell.
  void DoubleClick(QWidget* viewport, QPoint at) {
    QTest::mouseClick(viewport, Qt::LeftButton, {}, at);
    QTest::mouseDClick(viewport, Qt::LeftButton, {}, at);
  }
  void DoubleClickHeader(int column) {
    QHeaderView* header = table()->horizontalHeader();
    DoubleClick(header->viewport(),
                {header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                 header->height() / 2});
  }
  void DoubleClickCell(int row, int column) {
    DoubleClick(table()->viewport(), table()->visualRect(model()->index(row, column)).center());
  }

  vantrel::ScriptedPrompts prompts;
  vantrel::SystemClock clock;
  vantrel::hosts::RegisterSpace space;
  vantrel::hosts::TraceProgram program;
  VantrelWidget widget;
  bool answerLater = false;
};

QColor TextColor(const QLabel* label) {
  return label->palette().color(QPalette::WindowText);
}

}  // namespace

class WidgetTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    rig_ = std::make_unique<Rig>();
    rig_->widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&rig_->widget));
    if (qstrcmp(QTest::currentTestFunction(),
                "theLabelsButtonsAndHostSignalsFollowTheReadingCycle"))
      QVERIFY(rig_->StartRefreshing());
  }
  void cleanup() { rig_.reset(); }

  void theLabelsButtonsAndHostSignalsFollowTheReadingCycle() {
    Rig& r = *rig_;
    QLabel* status = r.widget.StatusLabel();
    QCOMPARE((QStringList{r.widget.TitleLabel()->text(), status->text()}),
             (QStringList{u"No Buffer Selected"_s, u"Disabled"_s}));
    QVERIFY(!r.widget.InfoButton()->isEnabled() && !r.widget.Chart()->isVisible());
    QStringList loading, order;
    connect(&r.widget, &VantrelWidget::Status, this, [&](qint16 state) {
      if (state == 4) loading << status->text();
    });
    r.prompts.SetNoticeWaiter([&](int ms) { order << u"notice %1"_s.arg(ms); });
    connect(&r.widget, &VantrelWidget::PCDCmd, this,
            [&](qint16 command) { order << u"PCDCmd %1"_s.arg(command); });
    r.widget.Start();
    // The host answers inside the request: the pointer is read before Start returns.
    QCOMPARE(status->text(), u"Stoped"_s);
    r.control().SetRunMode(2);
    QCOMPARE(status->text(), u"Refresh mode running"_s);
    QCOMPARE(r.widget.TitleLabel()->text(), u"Vantrel for : Pump station North      version 3"_s);
    QVERIFY(r.WriteAndWait(3, 3));
    QCOMPARE(loading.value(0), u"Loading 3 records"_s);
    QTRY_COMPARE(status->text(), u"Refresh mode runing"_s);
    // The indicator blinks while refreshing.
    QTRY_VERIFY(r.widget.ActivityShape()->isVisible());
    QTRY_VERIFY(!r.widget.ActivityShape()->isVisible());
    QTest::mouseClick(r.widget.InfoButton(), Qt::LeftButton);
    QVERIFY(r.prompts.Messages().size() == 1 &&
            r.prompts.Messages()[0].text.starts_with("Info section"));
    // A shut-down command: the notice, then the host hears it.
    r.program.SetCommand(9);
    QTRY_COMPARE(order, (QStringList{u"notice 3000"_s, u"PCDCmd 9"_s}));
  }

  void rowsAppearAsTheHostAnswersUpToTheRowLimit() {
    Rig& r = *rig_;
    QSignalSpy lines(&r.widget, &VantrelWidget::OutputLine);
    r.control().SetMaxRows(5);
    QVERIFY(r.WriteAndWait(4, 4));
    const int run = r.Column(u"Run"_s), batch = r.Column(u"Batch"_s);
    QVERIFY(run >= 0 && batch > run);
    for (int row = 0; row < 4; ++row) {
      // The first register's bit 0 counts 0, 1, 0, ... from the first record on.
      QCOMPARE(r.Number(row), QString::number(row + 1));
      QCOMPARE(r.Cell(row, run), row % 2 == 0 ? u"Off"_s : u"On"_s);
      QCOMPARE(r.Cell(row, batch), u"LOT7"_s);
    }
    QVERIFY(lines.count() == 4 && lines.last().at(0).toString().contains(u"LOT7"_s));
    // Answers a turn later, through the DataBlock slot, are taken the same way; at the
    // limit the oldest rows go and the row counter turns red.
    r.answerLater = true;
    r.program.WriteRecords(4);
    QTRY_COMPARE(r.widget.RecordCountLabel()->text(), u"8"_s);
    QTRY_COMPARE(r.Number(0), u"4"_s);
    QCOMPARE((QStringList{QString::number(r.model()->rowCount()), r.Number(4), r.Cell(4, run),
                          r.widget.RowCountLabel()->text()}),
             (QStringList{u"5"_s, u"8"_s, u"On"_s, u"5"_s}));
    QCOMPARE(TextColor(r.widget.RowCountLabel()), QColor(255, 0, 0));
    r.control().Clear();
    QVERIFY(r.model()->rowCount() == 0 && TextColor(r.widget.RowCountLabel()) == QColor(0, 0, 0));
  }

  void theNewestRowIsKeptInView() {
    Rig& r = *rig_;
    r.widget.resize(900, 300);
    QScrollBar* scroll = r.table()->verticalScrollBar();
    const auto newestInView = [&] {
      const QRect newest = r.table()->visualRect(r.model()->index(r.model()->rowCount() - 1, 3));
      // The view scrolls to the row the control puts at the top, within its range.
      return scroll->value() > 0 &&
             scroll->value() == std::min(r.control().Table().TopRow() - 1, scroll->maximum()) &&
             newest.top() >= 0 && newest.bottom() < r.table()->viewport()->height();
    };
    QVERIFY(r.WriteAndWait(40, 40));
    QTRY_VERIFY(newestInView());
    // The user looks at the oldest rows; the next record brings the newest back.
    scroll->setValue(0);
    QVERIFY(r.WriteAndWait(1, 41));
    QTRY_VERIFY(newestInView());
  }

  void aSelectedColumnIsPaintedAndDrawnOverTheNewestPoints() {
    Rig& r = *rig_;
    QTableView* table = r.table();
    QVERIFY(r.WriteAndWait(3, 3));
    const int level = r.Column(u"Level cm"_s);
    r.DoubleClickHeader(level);
    // The header is painted yellow, not only marked so.
    QHeaderView* header = table->horizontalHeader();
    const QColor pixel =
        header->grab().toImage().pixelColor(header->sectionViewportPosition(level) + 3, 3);
    QVERIFY2(pixel.red() > 200 && pixel.green() > 200 && pixel.blue() < 120,
             qPrintable(pixel.name()));
    const auto selected = [&] {
      return r.model()->headerData(level, Qt::Horizontal, Qt::BackgroundRole).isValid();
    };
    r.DoubleClickHeader(level);
    QVERIFY(!selected());
    // A double-click on a data cell selects nothing.
    r.DoubleClickCell(2, level);
    QVERIFY(!selected());
    r.DoubleClickHeader(level);
    QVERIFY(selected());

    QTest::mouseClick(r.widget.GraphButton(), Qt::LeftButton);
    QCOMPARE(r.widget.GraphButton()->text(), u"Grid"_s);
    QVERIFY(r.widget.Chart()->isVisible() && !table->isVisible());
    // The hidden table does not redraw while the chart is shown.
    QVERIFY(!table->updatesEnabled());
    auto* chart = static_cast<vantrel::qt::GraphView*>(r.widget.Chart());
    // The newest 20 rows of the column, oldest first, labelled with their record numbers.
    const auto shows = [&](int rows) {
      if (chart->SeriesCount() != 1 || chart->Series(0)->name() != u"Level cm"_s) return false;
      const QList<QPointF> points = chart->Series(0)->points();
      const QStringList labels = chart->PointAxis()->categoriesLabels();
      if (points.size() != 20 || labels.value(0) != QString::number(rows - 19)) return false;
      for (int i = 0; i < 20; ++i) {
        const double value = r.Cell(rows - 20 + i, level).toDouble();
        if (points[i].x() != i + 1 || qAbs(points[i].y() - value) > 1e-9) return false;
      }
      return true;
    };
    // Three rows fill the first three of the 20 points; rows that come in while the chart
    // is shown move it on.
    QTRY_VERIFY(chart->SeriesCount() == 1 && chart->Series(0)->count() == 3);
    QVERIFY(r.WriteAndWait(27, 30));
    QTRY_VERIFY(shows(30));

    QTest::mouseClick(r.widget.GraphButton(), Qt::LeftButton);
    QVERIFY(table->isVisible() && table->updatesEnabled() && !r.widget.Chart()->isVisible());
  }

  void theExportShowsItsProgress() {
    Rig& r = *rig_;
    vantrel::testing::TempDir dir;
    const std::string file = dir.File("trace.xls");
    r.control().SetExportFile(file);
    QVERIFY(r.WriteAndWait(6, 6));
    QString status;
    Qt::CursorShape cursor = Qt::ArrowCursor;
    connect(&r.widget, &VantrelWidget::NewExportFile, this, [&] {
      status = r.widget.StatusLabel()->text();
      cursor = r.widget.cursor().shape();
    });
    QTest::mouseClick(r.widget.ExportButton(), Qt::LeftButton);
    QCOMPARE(status, u"Exporting 6 rows..."_s);
    QVERIFY(cursor == Qt::BusyCursor && r.widget.cursor().shape() != Qt::BusyCursor);
    QVERIFY(r.widget.StatusLabel()->text().startsWith(u"Refresh mode"_s));
    QVERIFY(r.prompts.Messages().empty() && QFile::exists(QString::fromStdString(file)));
  }

  void theTableTakesTheGridFontWhenThePropertiesAreRead() {
    Rig& r = *rig_;
    QTableView* table = r.table();
    QVERIFY(table->font().family() == u"Courier"_s && table->font().pointSizeF() == 10.0);
    const int rowHeight = table->verticalHeader()->defaultSectionSize();
    r.control().SetGridFontSize("14");
    QCOMPARE(table->font().pointSizeF(), 10.0);
    // The font reaches the table once the property is read, as when the host saves it.
    QCOMPARE(r.control().GridFontSize(), std::string("14"));
    r.widget.Refresh();
    QCOMPARE(table->font().pointSizeF(), 14.0);
    QVERIFY(table->verticalHeader()->defaultSectionSize() > rowHeight);
    QCOMPARE(table->horizontalHeader()->height(), table->verticalHeader()->defaultSectionSize());
    // The control learns the row height, which tells it where the header row ends.
    QCOMPARE(r.control().Table().RowHeight(), table->verticalHeader()->defaultSectionSize() * 15);
  }

  void theSurfaceIsLaidOutInTwipsAndTakesClicks() {
    Rig& r = *rig_;
    QSignalSpy resized(&r.widget, &VantrelWidget::Resize);
    QSignalSpy clicks(&r.widget, &VantrelWidget::Click);
    QSignalSpy doubleClicks(&r.widget, &VantrelWidget::DblClick);
    r.widget.resize(800, 600);
    QVERIFY(resized.count() >= 1);
    QCOMPARE(r.widget.Frame()->size(), QSize(788, 589));
    // The control knows how much of the table is seen, for keeping the newest row in view.
    QCOMPARE(r.control().Table().ViewHeight(),
             (r.table()->viewport()->height() + r.table()->horizontalHeader()->height()) * 15);
    // The frame's bottom right corner, where no part lies; clicks on the parts are theirs.
    const QPoint corner(r.widget.Frame()->width() - 4, r.widget.Frame()->height() - 4);
    QTest::mouseClick(r.widget.Frame(), Qt::LeftButton, {}, corner);
    QTest::mouseDClick(r.widget.Frame(), Qt::LeftButton, {}, corner);
    QTest::mouseClick(r.widget.InfoButton(), Qt::LeftButton);
    QVERIFY(clicks.count() == 1 && doubleClicks.count() == 1);

    // Frame 5820 x 3835, table 5500 x 2665 at (120, 480) and chart 5520 x 2685 at the same
    // place, bottom line at 3460, info button at 3385: at 15 twips per pixel, rounded.
    r.widget.LayOutTwips(6000, 4000);
    QCOMPARE((QList<QRect>{r.widget.Frame()->geometry(), r.table()->geometry(),
                           r.widget.Chart()->geometry()}),
             (QList<QRect>{{0, 0, 388, 256}, {8, 32, 367, 178}, {8, 32, 368, 179}}));
    QCOMPARE((QList<int>{r.widget.StatusLabel()->y(), r.widget.ActivityShape()->y(),
                         r.widget.InfoButton()->y()}),
             (QList<int>{231, 234, 226}));
  }

  void columnWidthsFollowTheControlTheTextsAndTheUser() {
    Rig& r = *rig_;
    QTableView* table = r.table();
    const int date = r.Column(u"PC Date"_s);
    QVERIFY(table->isColumnHidden(date));
    r.control().SetDateStampCol(true);
    QVERIFY(!table->isColumnHidden(date));
    QVERIFY(r.WriteAndWait(3, 3));
    // Fitted to their texts, however narrow the control has them (Batch: 4 twips).
    const QFontMetrics metrics(table->font());
    const int setPoint = r.Column(u"Set point"_s), batch = r.Column(u"Batch"_s);
    QVERIFY(r.Cell(0, setPoint).startsWith(u"Station."_s));
    QVERIFY(table->columnWidth(setPoint) > metrics.horizontalAdvance(r.Cell(0, setPoint)));
    QVERIFY(table->columnWidth(batch) > metrics.horizontalAdvance(u"LOT7"_s));
    QCOMPARE(r.control().Table().ColumnWidth(setPoint + 1), 1800);
    // Not fitted, the control's widths: 700 and 1100 twips.
    r.widget.SetFitColumnsToContents(false);
    QCOMPARE((QList<int>{table->columnWidth(r.Column(u"Run"_s)), table->columnWidth(date)}),
             (QList<int>{47, 73}));
    // A width the user drags goes back to the control.
    QHeaderView* header = table->horizontalHeader();
    const int flow = r.Column(u"Flow"_s);
    const int before = header->sectionSize(flow);
    const int edge = header->sectionViewportPosition(flow) + before - 1;
    QTest::mousePress(header->viewport(), Qt::LeftButton, {}, QPoint(edge, 5));
    QTest::mouseMove(header->viewport(), QPoint(edge + 40, 5));
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, QPoint(edge + 40, 5));
    QCOMPARE(header->sectionSize(flow), before + 40);
    QCOMPARE(r.control().Table().ColumnWidth(flow + 1), (before + 40) * 15);
  }

  void selectedCellsCopyAsTabSeparatedText() {
    Rig& r = *rig_;
    r.control().SetDateStampCol(true);
    QVERIFY(r.WriteAndWait(3, 3));
    auto* table = static_cast<vantrel::qt::RecordTable*>(r.table());
    const int run = r.Column(u"Run"_s);
    // The rows and columns the selection spans, from the date column over the hidden time
    // and status columns to "Alarm"; cells of the span not selected stay empty.
    for (const auto& [row, column] : {std::pair{0, 0}, {0, run + 1}, {1, run}})
      table->selectionModel()->select(r.model()->index(row, column), QItemSelectionModel::Select);
    table->setFocus();
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(),
             r.Cell(0, 0) + "\t\t" + r.Cell(0, run + 1) + "\n\t" + r.Cell(1, run) + '\t');
    // The context menu's copy.
    table->selectionModel()->select(r.model()->index(2, run), QItemSelectionModel::ClearAndSelect);
    QVERIFY(table->actions().contains(table->CopyAction()));
    table->CopyAction()->trigger();
    QCOMPARE(QApplication::clipboard()->text(), r.Cell(2, run));
  }

  void aDoubleClickOnADataCellShowsItsRawValue() {
    Rig& r = *rig_;
    QVERIFY(r.WriteAndWait(2, 2));
    // Flow is the high word of the second register: 0x0100 for the first record.
    const int flow = r.Column(u"Flow"_s);
    QCOMPARE(r.Cell(0, flow), u"0100"_s);
    r.DoubleClickCell(0, flow);
    vantrel::qt::ValuePanel* panel = r.widget.ValuePanelWidget();
    QVERIFY(panel != nullptr && panel->isVisible() && panel->Cell()->text().contains(u"Flow"_s));
    QCOMPARE((QStringList{panel->Decimal()->text(), panel->Hexadecimal()->text(),
                          panel->Binary()->text(), panel->Characters()->text()}),
             (QStringList{u"256"_s, u"00000100"_s, u"00000000 00000000 00000001 00000000"_s,
                          u"'\x7f\x7f\x7f\x7f'"_s}));
    // The next record's cell replaces the panel's contents.
    r.DoubleClickCell(1, flow);
    QCOMPARE(panel->Decimal()->text(), u"257"_s);
  }

 private:
  std::unique_ptr<Rig> rig_;
};

QTEST_MAIN(WidgetTest)
#include "widget_test.moc"
