// The widget's units that stand alone: text conversion, the surface geometry, the table
// model adapter, clipboard text and the value conversions.

#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include "clipboard_text.h"
#include "record_table_model.h"
#include "surface_geometry.h"
#include "text_conversion.h"
#include "value_panel.h"
#include "vantrel/table_model.h"

using namespace vantrel::qt;

namespace {

// A table as the control builds it: record number, three stamp columns, two data columns.
vantrel::TableModel SmallTable() {
  vantrel::TableModel table;
  table.SetColumnCount(6);
  const char* captions[] = {"", "PC Date", "PC Time", "PCD", "Level", "Flow"};
  for (int c = 0; c < 6; ++c)
    table.SetText(0, c, captions[c]);
  return table;
}

// Appends a row of text cells given as tab-separated text.
void AddItem(vantrel::TableModel& table, const std::string& tabSeparated) {
  vantrel::TableRow row;
  size_t start = 0;
  while (true) {
    const size_t tab = tabSeparated.find('\t', start);
    row.cells.Append(tabSeparated.substr(start, tab - start), {}, 0, {}, {});
    if (tab == std::string::npos) break;
    start = tab + 1;
  }
  table.AddRow(std::move(row));
}

}  // namespace

class WidgetUnitsTest : public QObject {
  Q_OBJECT

 private slots:
  void textsConvertBetweenWindows1252AndUnicode() {
    // 0x80 is the euro sign in Windows-1252, 0xE9 an e with acute accent (as in Latin-1).
    QCOMPARE(ToQString("\x80 \xE9t\xE9"), QString::fromUtf8("\u20AC \u00E9t\u00E9"));
    QCOMPARE(FromQString(QString::fromUtf8("\u20AC \u00E9t\u00E9")), std::string("\x80 \xE9t\xE9"));
  }

  void theTitleRunsToTheFramesRightEdgeAndNeverGetsANegativeWidth() {
    QCOMPARE(PlaceSurface(6000, 4000).title, QRect(144, 8, 236, 18));
    QCOMPARE(PlaceSurface(300, 600).title.width(), 0);
  }

  void twipsConvertAtFifteenPerPixelToTheNearestPixel() {
    QCOMPARE(PixelsFromTwips(7), 0);
    QCOMPARE(PixelsFromTwips(8), 1);
  }

  void alignmentCodesMapToQtForTheCellsOfTheirColumn() {
    QCOMPARE(AlignmentFromCode(0), Qt::AlignLeft | Qt::AlignTop);
    QCOMPARE(AlignmentFromCode(1), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(AlignmentFromCode(8), Qt::AlignRight | Qt::AlignBottom);
    QCOMPARE(AlignmentFromCode(9), Qt::AlignLeft | Qt::AlignVCenter);
    vantrel::TableModel table = SmallTable();
    RecordTableModel model(table);
    AddItem(table, "1\t01/01/26\t08:00:00\tRun\t12.5\t0100");
    model.Flush();
    table.SetColumnAlignment(4, 7);
    QCOMPARE(model.index(0, 3).data(Qt::TextAlignmentRole).value<Qt::Alignment>(),
             Qt::AlignRight | Qt::AlignVCenter);
  }

  void theModelFollowsAppendsRemovalsAndResets() {
    vantrel::TableModel table = SmallTable();
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
    QCOMPARE(inserted.last().at(1).toInt(), 0);
    QCOMPARE(inserted.last().at(2).toInt(), 2);
    table.RemoveRow(2);  // not at the front: told at once
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.last().at(1).toInt(), 1);
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(model.headerData(1, Qt::Vertical).toString(), QStringLiteral("3"));
    table.SetText(2, 4, "x");
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.last().at(0).toModelIndex(), model.index(1, 3));
    table.SetText(0, 5, "Flow l/s");
    QCOMPARE(header.last().at(1).toInt(), 4);
    table.SetRowCount(1);
    model.Flush();
    QCOMPARE(model.rowCount(), 0);
    table.SetColumnCount(10);
    QCOMPARE(reset.count(), 1);
    QCOMPARE(model.columnCount(), 9);
    model.Detach();
    AddItem(table, "9");
    QCOMPARE(model.rowCount(), 0);
  }

  void rowsDroppedAndAppendedAtTheLimitAreToldAsOneRemovalAndOneInsertion() {
    vantrel::TableModel table = SmallTable();
    RecordTableModel model(table);
    for (int i = 1; i <= 4; ++i)
      AddItem(table, std::to_string(i));
    model.Flush();
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    const auto numbers = [&model] {
      QStringList shown;
      for (int row = 0; row < model.rowCount(); ++row)
        shown << model.headerData(row, Qt::Vertical).toString();
      return shown;
    };
    // A table at its limit of 4 rows takes 3 more: each drops the oldest first.
    for (int i = 5; i <= 7; ++i) {
      table.RemoveRow(1);
      AddItem(table, std::to_string(i));
    }
    // Until told, the views see the rows they know, the dropped ones empty.
    QCOMPARE(model.rowCount(), 4);
    QVERIFY(!model.headerData(0, Qt::Vertical).isValid());
    QCOMPARE(model.headerData(3, Qt::Vertical).toString(), QStringLiteral("4"));
    model.Flush();
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.last().at(2).toInt(), 2);
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.last().at(1).toInt(), 1);
    QCOMPARE(inserted.last().at(2).toInt(), 3);
    QCOMPARE(numbers(), (QStringList{"4", "5", "6", "7"}));

    // More rows dropped than were told: the appended ones untold are dropped with them.
    for (int i = 8; i <= 13; ++i) {
      table.RemoveRow(1);
      AddItem(table, std::to_string(i));
    }
    model.Flush();
    QCOMPARE(numbers(), (QStringList{"10", "11", "12", "13"}));
  }

  void selectionTextSpansTheSelectionAndSkipsHiddenColumns() {
    QStandardItemModel model(4, 4);
    for (int r = 0; r < 4; ++r) {
      for (int c = 0; c < 4; ++c)
        model.setItem(r, c, new QStandardItem(QStringLiteral("%1%2").arg(QChar('a' + c)).arg(r)));
    }
    const QModelIndexList cells{model.index(1, 1), model.index(1, 3), model.index(2, 2)};
    const auto none = [](int) { return false; };
    QCOMPARE(SelectionText(model, cells, none), QStringLiteral("b1\t\td1\n\tc2\t"));
    const auto hideC = [](int column) { return column == 2; };
    QCOMPARE(SelectionText(model, cells, hideC), QStringLiteral("b1\td1\n\t"));
    QCOMPARE(SelectionText(model, {}, none), QString());
  }

  void rawValuesConvertToEveryBase() {
    const RawValueTexts text = ConvertRawValue(0x4C4F5437);  // "LOT7"
    QCOMPARE(text.characters, QStringLiteral("'LOT7'"));
    QCOMPARE(text.hexadecimal, QStringLiteral("4C4F5437"));
    const RawValueTexts negative = ConvertRawValue(-2);
    QCOMPARE(negative.decimal, QStringLiteral("-2"));
    QCOMPARE(negative.hexadecimal, QStringLiteral("FFFFFFFE"));
    QCOMPARE(negative.binary, QStringLiteral("11111111 11111111 11111111 11111110"));
  }
};

QTEST_MAIN(WidgetUnitsTest)
#include "widget_units_test.moc"
