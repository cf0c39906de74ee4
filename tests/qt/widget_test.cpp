// The widget driven through its public face as a host and a user drive it: rows coming in
// as the host answers, the status line, header selection, the graph, the export, the info
// button, the layout, column widths, clipboard copy and the value panel.

#include <QAbstractItemModel>
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
#include "trace_rig.h"
#include "value_panel.h"

using vantrel::testing::TraceRig;

namespace {

QColor TextColor(const QLabel* label) {
  return label->palette().color(QPalette::WindowText);
}

// Double-clicks the header cell of a model column, as a user does.
void DoubleClickHeader(QTableView* table, int column) {
  QHeaderView* header = table->horizontalHeader();
  const QPoint center(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                      header->height() / 2);
  // A double-click comes as a press (which tells the control where the mouse went down),
  // a release and the double-click itself.
  QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, center);
  QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, center);
}

// The point of a cell in the table's viewport.
QPoint CellCenter(QTableView* table, int row, int column) {
  return table->visualRect(table->model()->index(row, column)).center();
}

}  // namespace

class WidgetTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    rig_ = std::make_unique<TraceRig>();
    rig_->widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&rig_->widget));
  }
  void cleanup() { rig_.reset(); }

  void aNewControlShowsNoBufferAndDisabled() {
    TraceRig& r = *rig_;
    QCOMPARE(r.widget.TitleLabel()->text(), QStringLiteral("No Buffer Selected"));
    QCOMPARE(r.widget.StatusLabel()->text(), QStringLiteral("Disabled"));
    QVERIFY(!r.widget.Chart()->isVisible());
  }

  void theStatusLineAndTheActivityIndicatorFollowTheReadingCycle() {
    TraceRig& r = *rig_;
    QStringList loading;
    connect(&r.widget, &vantrel::qt::VantrelWidget::Status, this, [&](qint16 state) {
      if (state == 4) loading << r.widget.StatusLabel()->text();
    });
    r.widget.Start();
    // The host answers inside the request: the pointer is read before Start returns.
    QCOMPARE(r.widget.StatusLabel()->text(), QStringLiteral("Stoped"));
    r.control().SetRunMode(2);
    QCOMPARE(r.widget.StatusLabel()->text(), QStringLiteral("Refresh mode running"));
    QCOMPARE(TextColor(r.widget.StatusLabel()), QColor(Qt::black));
    QCOMPARE(r.widget.TitleLabel()->text(),
             QStringLiteral("Vantrel for : Pump station North      version 3"));

    QVERIFY(r.WriteAndWait(3, 3));
    QVERIFY(!loading.isEmpty());
    QCOMPARE(loading.first(), QStringLiteral("Loading 3 records"));
    QTRY_COMPARE(r.widget.StatusLabel()->text(), QStringLiteral("Refresh mode runing"));
    // The indicator blinks while refreshing.
    QWidget* activity = r.widget.ActivityShape();
    QTRY_VERIFY(activity->isVisible());
    QTRY_VERIFY(!activity->isVisible());
    r.control().SetRunMode(0);
    QCOMPARE(r.widget.StatusLabel()->text(), QStringLiteral("Stoped"));
  }

  void rowsAppearAsTheHostAnswers() {
    TraceRig& r = *rig_;
    QSignalSpy lines(&r.widget, &vantrel::qt::VantrelWidget::OutputLine);
    QVERIFY(r.StartRefreshing());
    QVERIFY(r.WriteAndWait(5, 5));
    const QAbstractItemModel* model = r.widget.Table()->model();
    QCOMPARE(model->rowCount(), 5);
    const int run = r.ModelColumn(QStringLiteral("Run"));
    const int batch = r.ModelColumn(QStringLiteral("Batch"));
    QVERIFY(run >= 0 && batch > run);
    for (int row = 0; row < 5; ++row) {
      QCOMPARE(model->headerData(row, Qt::Vertical).toString().trimmed(), QString::number(row + 1));
      // The first register's bit 0 counts 0, 1, 0, ... from the first record on.
      QCOMPARE(r.Cell(row, run), row % 2 == 0 ? QStringLiteral("Off") : QStringLiteral("On"));
      QCOMPARE(r.Cell(row, batch), QStringLiteral("LOT7"));
    }
    QCOMPARE(lines.count(), 5);
    QVERIFY(lines.last().at(0).toString().contains(QStringLiteral("LOT7")));

    // Answers that come a turn later, through the DataBlock slot, are taken the same way.
    r.answerLater = true;
    QVERIFY(r.WriteAndWait(3, 8));
    QCOMPARE(model->headerData(7, Qt::Vertical).toString().trimmed(), QStringLiteral("8"));
    QCOMPARE(r.Cell(7, run), QStringLiteral("On"));
  }

  void theRowLimitDropsTheOldestRowAndTurnsTheCounterRed() {
    TraceRig& r = *rig_;
    r.control().SetMaxRows(5);
    QVERIFY(r.StartRefreshing());
    QVERIFY(r.WriteAndWait(8, 5));
    QTRY_COMPARE(r.widget.RecordCountLabel()->text(), QStringLiteral("8"));
    const QAbstractItemModel* model = r.widget.Table()->model();
    QCOMPARE(model->rowCount(), 5);
    QCOMPARE(model->headerData(0, Qt::Vertical).toString().trimmed(), QStringLiteral("4"));
    QCOMPARE(model->headerData(4, Qt::Vertical).toString().trimmed(), QStringLiteral("8"));
    QCOMPARE(r.widget.RowCountLabel()->text(), QStringLiteral("5"));
    QCOMPARE(TextColor(r.widget.RowCountLabel()), QColor(255, 0, 0));
    r.control().Clear();
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(r.widget.RowCountLabel()->text(), QStringLiteral("0"));
    QCOMPARE(TextColor(r.widget.RowCountLabel()), QColor(0, 0, 0));
  }

  void theNewestRowIsKeptInView() {
    TraceRig& r = *rig_;
    r.widget.resize(900, 300);
    QVERIFY(r.StartRefreshing());
    QTableView* table = r.widget.Table();
    QScrollBar* scroll = table->verticalScrollBar();
    const auto newestInView = [&] {
      const int last = table->model()->rowCount() - 1;
      const QRect newest = table->visualRect(table->model()->index(last, 3));
      // The view scrolls to the row the control puts at the top, within its range.
      return scroll->value() > 0 &&
             scroll->value() == std::min(r.control().Table().TopRow() - 1, scroll->maximum()) &&
             newest.top() >= 0 && newest.bottom() < table->viewport()->height();
    };
    QVERIFY(r.WriteAndWait(40, 40));
    QTRY_VERIFY(newestInView());
    // The user looks at the oldest rows; the next record brings the newest back.
    scroll->setValue(0);
    QVERIFY(r.WriteAndWait(1, 41));
    QTRY_VERIFY(newestInView());
  }

  void aHeaderDoubleClickTogglesTheColumnsSelection() {
    TraceRig& r = *rig_;
    QTableView* table = r.widget.Table();
    QVERIFY(r.StartRefreshing());
    const int level = r.ModelColumn(QStringLiteral("Level cm"));
    QVERIFY(level >= 0);
    // Without data rows the header does not take the double-click.
    DoubleClickHeader(table, level);
    QVERIFY(!table->model()->headerData(level, Qt::Horizontal, Qt::BackgroundRole).isValid());

    QVERIFY(r.WriteAndWait(2, 2));
    DoubleClickHeader(table, level);
    const QVariant background =
        table->model()->headerData(level, Qt::Horizontal, Qt::BackgroundRole);
    QCOMPARE(background.value<QBrush>().color(), QColor(255, 255, 0));
    // The header is painted yellow, not only marked so.
    QHeaderView* header = table->horizontalHeader();
    const QImage image = header->grab().toImage();
    const QColor pixel = image.pixelColor(header->sectionViewportPosition(level) + 3, 3);
    QVERIFY2(pixel.red() > 200 && pixel.green() > 200 && pixel.blue() < 120,
             qPrintable(pixel.name()));

    DoubleClickHeader(table, level);
    QVERIFY(!table->model()->headerData(level, Qt::Horizontal, Qt::BackgroundRole).isValid());
    // A double-click on a data cell selects nothing.
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, CellCenter(table, 0, level));
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, CellCenter(table, 0, level));
    QCOMPARE(r.control().Table().HeaderBackColor(level + 1), 0);
  }

  void theGraphShowsTheSelectedColumnOverTheNewestPoints() {
    TraceRig& r = *rig_;
    QTableView* table = r.widget.Table();
    QVERIFY(r.StartRefreshing());
    QVERIFY(r.WriteAndWait(30, 30));
    const int level = r.ModelColumn(QStringLiteral("Level cm"));
    DoubleClickHeader(table, level);
    QTest::mouseClick(r.widget.GraphButton(), Qt::LeftButton);
    QCOMPARE(r.widget.GraphButton()->text(), QStringLiteral("Grid"));
    QVERIFY(r.widget.Chart()->isVisible());
    QVERIFY(!table->isVisible());
    // The hidden table does not redraw while the chart is shown.
    QVERIFY(!table->updatesEnabled());

    auto* chart = static_cast<vantrel::qt::GraphView*>(r.widget.Chart());
    QTRY_COMPARE(chart->SeriesCount(), 1);
    QCOMPARE(chart->Series(0)->name(), QStringLiteral("Level cm"));
    // The newest MaxGraph (20) rows of the column, oldest first.
    auto expectPoints = [&](int rows) {
      const QList<QPointF> points = chart->Series(0)->points();
      if (points.size() != 20) return false;
      for (int i = 0; i < 20; ++i) {
        const double value = r.Cell(rows - 20 + i, level).trimmed().toDouble();
        if (points[i].x() != i + 1 || qAbs(points[i].y() - value) > 1e-9) return false;
      }
      return true;
    };
    QTRY_VERIFY(expectPoints(30));
    const QStringList labels = chart->PointAxis()->categoriesLabels();
    QCOMPARE(labels.size(), 20);
    QCOMPARE(labels.first(), QStringLiteral("11"));
    QCOMPARE(labels.last(), QStringLiteral("30"));

    // Rows that come in while the chart is shown move it on.
    QVERIFY(r.WriteAndWait(5, 35));
    QTRY_VERIFY(expectPoints(35));

    QTest::mouseClick(r.widget.GraphButton(), Qt::LeftButton);
    QCOMPARE(r.widget.GraphButton()->text(), QStringLiteral("Graph"));
    QVERIFY(table->isVisible());
    QVERIFY(table->updatesEnabled());
    QVERIFY(!r.widget.Chart()->isVisible());
  }

  void theGraphWithoutSelectionDrawsEveryDataColumn() {
    TraceRig& r = *rig_;
    QVERIFY(r.StartRefreshing());
    QVERIFY(r.WriteAndWait(3, 3));
    QTest::mouseClick(r.widget.GraphButton(), Qt::LeftButton);
    auto* chart = static_cast<vantrel::qt::GraphView*>(r.widget.Chart());
    const QAbstractItemModel* model = r.widget.Table()->model();
    // Data columns are the model's columns after the three stamp columns.
    QTRY_COMPARE(chart->SeriesCount(), model->columnCount() - 3);
    // Three rows fill the first three of the 20 points.
    QCOMPARE(chart->Series(0)->count(), 3);
  }

  void theExportButtonShowsTheExportAndEmptiesTheTable() {
    TraceRig& r = *rig_;
    vantrel::testing::TempDir dir;
    const std::string file = dir.File("trace.xls");
    r.control().SetExportFile(file);
    QVERIFY(r.StartRefreshing());
    QVERIFY(r.WriteAndWait(6, 6));

    QString statusDuringExport;
    Qt::CursorShape cursorDuringExport = Qt::ArrowCursor;
    QSignalSpy newFile(&r.widget, &vantrel::qt::VantrelWidget::NewExportFile);
    connect(&r.widget, &vantrel::qt::VantrelWidget::NewExportFile, this, [&] {
      statusDuringExport = r.widget.StatusLabel()->text();
      cursorDuringExport = r.widget.cursor().shape();
    });
    QTest::mouseClick(r.widget.ExportButton(), Qt::LeftButton);

    QCOMPARE(newFile.count(), 1);
    QCOMPARE(statusDuringExport, QStringLiteral("Exporting 6 rows..."));
    QCOMPARE(cursorDuringExport, Qt::BusyCursor);
    QVERIFY(r.widget.cursor().shape() != Qt::BusyCursor);
    QVERIFY(r.widget.StatusLabel()->text().startsWith(QStringLiteral("Refresh mode")));
    // A successful export empties the table.
    QCOMPARE(r.widget.Table()->model()->rowCount(), 0);
    QVERIFY(r.prompts.Messages().empty());
    QVERIFY(QFile::exists(QString::fromStdString(file)));
  }

  void theInfoButtonShowsTheDescriptionsInformation() {
    TraceRig& r = *rig_;
    QVERIFY(!r.widget.InfoButton()->isEnabled());
    r.control().ClickInfoButton();
    QCOMPARE(r.prompts.Messages().back().text, std::string("No info avalaible."));
    QCOMPARE(r.prompts.Messages().back().title, std::string("Vantrel"));

    QVERIFY(r.StartRefreshing());
    QVERIFY(r.widget.InfoButton()->isEnabled());
    QTest::mouseClick(r.widget.InfoButton(), Qt::LeftButton);
    const vantrel::ShownMessage& info = r.prompts.Messages().back();
    QVERIFY(QString::fromStdString(info.title).contains(QStringLiteral("PMP1_pumps.vtl")));
    QVERIFY(QString::fromStdString(info.text).startsWith(
        QStringLiteral("Info section :\r\rTrace of the pump station")));
    QCOMPARE(info.icon, vantrel::MessageIcon::Information);
  }

  void theTableTakesTheGridFont() {
    TraceRig& r = *rig_;
    QVERIFY(r.StartRefreshing());
    QTableView* table = r.widget.Table();
    QCOMPARE(table->font().family(), QStringLiteral("Courier"));
    QCOMPARE(table->font().pointSizeF(), 10.0);
    const int rowHeight = table->verticalHeader()->defaultSectionSize();
    // The font reaches the table when the property is read, as when the host saves it.
    r.control().SetGridFontSize("14");
    QCOMPARE(table->font().pointSizeF(), 10.0);
    QCOMPARE(r.control().GridFontSize(), std::string("14"));
    r.widget.Refresh();
    QCOMPARE(table->font().pointSizeF(), 14.0);
    QVERIFY(table->verticalHeader()->defaultSectionSize() > rowHeight);
    QCOMPARE(table->horizontalHeader()->height(), table->verticalHeader()->defaultSectionSize());
    // The control learns the row height, which tells it where the header row ends.
    QCOMPARE(r.control().Table().RowHeight(), table->verticalHeader()->defaultSectionSize() * 15);
  }

  void aShutDownCommandShowsTheNoticeBeforeTheHostHearsIt() {
    TraceRig& r = *rig_;
    QStringList order;
    r.prompts.SetNoticeWaiter([&](int ms) { order << QStringLiteral("notice %1").arg(ms); });
    connect(&r.widget, &vantrel::qt::VantrelWidget::PCDCmd, this,
            [&](qint16 command) { order << QStringLiteral("PCDCmd %1").arg(command); });
    QVERIFY(r.StartRefreshing());
    r.program.SetCommand(9);
    QTRY_COMPARE(order, (QStringList{"notice 3000", "PCDCmd 9"}));
    QCOMPARE(r.prompts.Notices().front().caption, std::string("Form1"));
  }

  void clicksOnTheSurfaceReachTheHost() {
    TraceRig& r = *rig_;
    QSignalSpy clicks(&r.widget, &vantrel::qt::VantrelWidget::Click);
    QSignalSpy doubleClicks(&r.widget, &vantrel::qt::VantrelWidget::DblClick);
    // The frame's bottom right corner, where no part lies.
    QFrame* frame = r.widget.Frame();
    const QPoint corner(frame->width() - 4, frame->height() - 4);
    QTest::mouseClick(frame, Qt::LeftButton, {}, corner);
    QCOMPARE(clicks.count(), 1);
    QTest::mouseDClick(frame, Qt::LeftButton, {}, corner);
    QCOMPARE(doubleClicks.count(), 1);
    // Clicks on the parts are theirs.
    QTest::mouseClick(r.widget.InfoButton(), Qt::LeftButton);
    QCOMPARE(clicks.count(), 1);
  }

  void theLayoutAt6000By4000TwipsMatchesTheControlsLayout() {
    TraceRig& r = *rig_;
    r.widget.LayOutTwips(6000, 4000);
    // Frame 5820 x 3835, table 5500 x 2665 at (120, 480) and chart 5520 x 2685 at the same
    // place, bottom line at 3460, info button at 3385: at 15 twips per pixel, rounded.
    QCOMPARE(r.widget.Frame()->geometry(), QRect(0, 0, 388, 256));
    QCOMPARE(r.widget.Table()->geometry(), QRect(8, 32, 367, 178));
    QCOMPARE(r.widget.Chart()->geometry(), QRect(8, 32, 368, 179));
    QCOMPARE(r.widget.StatusLabel()->y(), 231);
    QCOMPARE(r.widget.ActivityShape()->y(), 234);
    QCOMPARE(r.widget.InfoButton()->y(), 226);
  }

  void resizingLaysTheSurfaceOutAgain() {
    TraceRig& r = *rig_;
    QSignalSpy resized(&r.widget, &vantrel::qt::VantrelWidget::Resize);
    r.widget.resize(800, 600);
    QVERIFY(resized.count() >= 1);
    QCOMPARE(r.widget.Frame()->size(), QSize(788, 589));
    // The control knows how much of the table is seen, for keeping the newest row in view.
    QTableView* table = r.widget.Table();
    QCOMPARE(r.control().Table().ViewHeight(),
             (table->viewport()->height() + table->horizontalHeader()->height()) * 15);
  }

  void columnWidthsFollowTheControl() {
    TraceRig& r = *rig_;
    r.widget.SetFitColumnsToContents(false);
    QVERIFY(r.StartRefreshing());
    QTableView* table = r.widget.Table();
    // 700 twips.
    QCOMPARE(table->columnWidth(r.ModelColumn(QStringLiteral("Run"))), 47);
    const int date = r.ModelColumn(QStringLiteral("PC Date"));
    QVERIFY(table->isColumnHidden(date));
    r.control().SetDateStampCol(true);
    QVERIFY(!table->isColumnHidden(date));
    QCOMPARE(table->columnWidth(date), 73);
  }

  void narrowColumnsAreDrawnWideEnoughForTheirTexts() {
    TraceRig& r = *rig_;
    QVERIFY(r.StartRefreshing());
    QVERIFY(r.WriteAndWait(3, 3));
    QTableView* table = r.widget.Table();
    const int setPoint = r.ModelColumn(QStringLiteral("Set point"));
    const QString widest = r.Cell(0, setPoint);
    QVERIFY(widest.startsWith(QStringLiteral("Station.")));
    QVERIFY(table->columnWidth(setPoint) > QFontMetrics(table->font()).horizontalAdvance(widest));
    // The control's width stays as the description set it.
    QCOMPARE(r.control().Table().ColumnWidth(setPoint + 1), 1800);
    // A column of 4 twips is shown, as wide as its caption and texts.
    const int batch = r.ModelColumn(QStringLiteral("Batch"));
    QVERIFY(!table->isColumnHidden(batch));
    QVERIFY(table->columnWidth(batch) > QFontMetrics(table->font()).horizontalAdvance("LOT7"));
  }

  void draggingAColumnEdgeGivesTheControlTheNewWidth() {
    TraceRig& r = *rig_;
    QVERIFY(r.StartRefreshing());
    QTableView* table = r.widget.Table();
    QHeaderView* header = table->horizontalHeader();
    const int flow = r.ModelColumn(QStringLiteral("Flow"));
    const int before = header->sectionSize(flow);
    const int edge = header->sectionViewportPosition(flow) + before - 1;
    QWidget* viewport = header->viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, QPoint(edge, 5));
    QTest::mouseMove(viewport, QPoint(edge + 40, 5));
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, QPoint(edge + 40, 5));
    QCOMPARE(header->sectionSize(flow), before + 40);
    QCOMPARE(r.control().Table().ColumnWidth(flow + 1), (before + 40) * 15);
  }

  void selectedCellsCopyAsTabSeparatedText() {
    TraceRig& r = *rig_;
    r.control().SetDateStampCol(true);
    QVERIFY(r.StartRefreshing());
    QVERIFY(r.WriteAndWait(3, 3));
    QTableView* table = r.widget.Table();
    const QAbstractItemModel* model = table->model();
    const int run = r.ModelColumn(QStringLiteral("Run"));
    // From the date column over the hidden time and status columns to "Alarm".
    table->selectionModel()->select(QItemSelection(model->index(0, 0), model->index(1, run + 1)),
                                    QItemSelectionModel::ClearAndSelect);
    table->setFocus();
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    const QString expected =
        QStringList{r.Cell(0, 0), r.Cell(0, run), r.Cell(0, run + 1)}.join('\t') + '\n' +
        QStringList{r.Cell(1, 0), r.Cell(1, run), r.Cell(1, run + 1)}.join('\t');
    QCOMPARE(QApplication::clipboard()->text(), expected);

    QApplication::clipboard()->clear();
    table->selectionModel()->select(model->index(2, run), QItemSelectionModel::ClearAndSelect);
    QVERIFY(table->actions().contains(static_cast<vantrel::qt::RecordTable*>(table)->CopyAction()));
    static_cast<vantrel::qt::RecordTable*>(table)->CopyAction()->trigger();
    QCOMPARE(QApplication::clipboard()->text(), r.Cell(2, run));
  }

  void aDoubleClickOnADataCellShowsItsRawValue() {
    TraceRig& r = *rig_;
    QVERIFY(r.StartRefreshing());
    QVERIFY(r.WriteAndWait(2, 2));
    QTableView* table = r.widget.Table();
    // Flow is the high word of the second register: 0x0100 for the first record.
    const int flow = r.ModelColumn(QStringLiteral("Flow"));
    QCOMPARE(r.Cell(0, flow), QStringLiteral("0100"));
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, CellCenter(table, 0, flow));
    vantrel::qt::ValuePanel* panel = r.widget.ValuePanelWidget();
    QVERIFY(panel != nullptr);
    QVERIFY(panel->isVisible());
    QCOMPARE(panel->Decimal()->text(), QStringLiteral("256"));
    QCOMPARE(panel->Hexadecimal()->text(), QStringLiteral("00000100"));
    QCOMPARE(panel->Binary()->text(), QStringLiteral("00000000 00000000 00000001 00000000"));
    QCOMPARE(panel->Characters()->text(), QStringLiteral("'\x7f\x7f\x7f\x7f'"));
    QVERIFY(panel->Cell()->text().contains(QStringLiteral("Flow")));

    // The next record's cell replaces the panel's contents.
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, CellCenter(table, 1, flow));
    QCOMPARE(panel->Decimal()->text(), QStringLiteral("257"));
  }

 private:
  std::unique_ptr<TraceRig> rig_;
};

QTEST_MAIN(WidgetTest)
#include "widget_test.moc"
