// The widget's units that stand alone: text conversion, the title's geometry, the table
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
using namespace Qt::StringLiterals;

namespace {

// A table as the control builds it: record number, three stamp columns, two data columns
// and the two hidden lines.
vantrel::TableModel SmallTable() {
  vantrel::TableModel table;
  table.SetColumnCount(8);
  const char* captions[] = {"", "PC Date", "PC Time", "PCD", "Level", "Flow", "", ""};
  for (int c = 0; c < 8; ++c)
    table.SetText(0, c, captions[c]);
  return table;
}

QStringList Numbers(const QAbstractItemModel& model) {
  QStringList shown;
  for (int row = 0; row < model.rowCount(); ++row)
    shown << model.headerData(row, Qt::Vertical).toString();
  return shown;
}

}  // namespace

class WidgetUnitsTest : public QObject {
  Q_OBJECT

 private slots:
  void textsConvertBetweenWindows1252AndUnicodeAndTheTitleNeverGetsANegativeWidth() {
    // 0x80 is the euro sign in Windows-1252, 0xE9 an e with acute accent (as in Latin-1).
    QCOMPARE(ToQString("\x80 \xE9t\xE9"), QString::fromUtf8("\u20AC \u00E9t\u00E9"));
    QCOMPARE(FromQString(QString::fromUtf8("\u20AC \u00E9t\u00E9")), std::string("\x80 \xE9t\xE9"));
    QCOMPARE(PlaceSurface(6000, 4000).title, QRect(144, 8, 236, 18));
    QCOMPARE(PlaceSurface(300, 600).title.width(), 0);
  }

  void alignmentCodesMapToQtForTheCellsOfTheirColumn() {
    const std::pair<int, Qt::Alignment> codes[] = {{0, Qt::AlignLeft | Qt::AlignTop},
                                                   {1, Qt::AlignLeft | Qt::AlignVCenter},
                                                   {7, Qt::AlignRight | Qt::AlignVCenter},
                                                   {8, Qt::AlignRight | Qt::AlignBottom},
                                                   {9, Qt::AlignLeft | Qt::AlignVCenter}};
    for (const auto& [code, alignment] : codes)
      QCOMPARE(AlignmentFromCode(code), alignment);
    vantrel::TableModel table = SmallTable();
    RecordTableModel model(table);
    table.AddItem("1\t01/01/26\t08:00:00\tRun\t12.5\t0100\t125;256\t;");
    model.Flush();
    table.SetColumnAlignment(4, 7);
    QCOMPARE(model.index(0, 3).data(Qt::TextAlignmentRole).value<Qt::Alignment>(),
             Qt::AlignRight | Qt::AlignVCenter);
  }

  void theModelFollowsAppendsRemovalsChangesAndResets() {
    vantrel::TableModel table = SmallTable();
    RecordTableModel model(table);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy header(&model, &QAbstractItemModel::headerDataChanged);
    for (int i = 1; i <= 3; ++i)
      table.AddItem(std::to_string(i) + "\ta\tb\tc\td\te\tf\tg");
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
    table.SetText(0, 5, "Flow l/s");
    QCOMPARE(header.last().at(1).toInt(), 4);
    table.SetRowCount(1);
    model.Flush();
    QCOMPARE(model.rowCount(), 0);
    table.SetColumnCount(10);
    QCOMPARE(reset.count(), 1);
    QCOMPARE(model.columnCount(), 9);
    model.Detach();
    table.AddItem("9");
    QCOMPARE(model.rowCount(), 0);
  }

  void rowsDroppedAndAppendedAtTheLimitAreToldAsOneRemovalAndOneInsertion() {
    vantrel::TableModel table = SmallTable();
    RecordTableModel model(table);
    for (int i = 1; i <= 4; ++i)
      table.AddItem(std::to_string(i));
    model.Flush();
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    // A table at its limit of 4 rows takes 3 more: each drops the oldest first.
    const auto append = [&table](int from, int to) {
      for (int i = from; i <= to; ++i) {
        table.RemoveRow(1);
        table.AddItem(std::to_string(i));
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

  void selectionTextSpansTheSelectionAndSkipsHiddenColumns() {
    QStandardItemModel model(4, 4);
    for (int r = 0; r < 4; ++r) {
      for (int c = 0; c < 4; ++c)
        model.setItem(r, c, new QStandardItem(u"%1%2"_s.arg(QChar('a' + c)).arg(r)));
    }
    const QModelIndexList cells{model.index(1, 1), model.index(1, 3), model.index(2, 2)};
    const auto none = [](int) { return false; };
    QCOMPARE(SelectionText(model, cells, none), u"b1\t\td1\n\tc2\t"_s);
    QCOMPARE(SelectionText(model, cells, [](int column) { return column == 2; }), u"b1\td1\n\t"_s);
    QCOMPARE(SelectionText(model, {}, none), QString());
  }

  void rawValuesConvertToEveryBase() {
    QCOMPARE(ConvertRawValue(0x4C4F5437).characters, u"'LOT7'"_s);
    const RawValueTexts negative = ConvertRawValue(-2);
    QCOMPARE(negative.decimal, u"-2"_s);
    QCOMPARE(negative.hexadecimal, u"FFFFFFFE"_s);
    QCOMPARE(negative.binary, u"11111111 11111111 11111111 11111110"_s);
  }

  void theRawValueOfACellIsItsPlaceInTheRawLine() {
    const struct {
      const char* line;
      int column;
      std::optional<int64_t> value;
    } cases[] = {{"1;0;-38;256", 0, 1},
                 {"1;0;-38;256", 2, -38},
                 {"1;0;-38;256", 3, 256},
                 {"1;0;-38;256", 4, {}},
                 {"1;;3", 1, {}},
                 {"1;12,5;3", 1, {}},
                 {"", 0, {}}};
    for (const auto& c : cases)
      QCOMPARE(RawValueOfCell(c.line, c.column), c.value);
    QVERIFY(RawLineAligned("1;0;-38", 3));
    QVERIFY(!RawLineAligned("1;0;-38;1280", 3));
  }
};

QTEST_MAIN(WidgetUnitsTest)
#include "widget_units_test.moc"
