#include "trace_rig.h"

#include <QAbstractItemModel>
#include <QMetaObject>
#include <QTableView>
#include <QTest>

#include "vantrel/hosts/pump_station.h"

namespace vantrel::testing {

TraceRig::TraceRig() : program(space, hosts::PumpStationProgram(), clock), widget(prompts) {
  program.Install();
  QObject::connect(
      &widget, &qt::VantrelWidget::ReadPCDReg, &widget, [this](qint16 first, qint16 count) {
        const std::vector<int32_t> words = space.ReadRegisters(first, count);
        if (!answerLater) {
          widget.control().SetDataBlock(words);
          return;
        }
        const QList<qint32> block(words.begin(), words.end());
        QMetaObject::invokeMethod(
            &widget, [this, block] { widget.SetDataBlock(block); }, Qt::QueuedConnection);
      });
  Control& c = widget.control();
  c.SetResourcePath(VANTREL_EXAMPLES_DIR);
  c.SetSymbFile(VANTREL_EXAMPLES_DIR "/pumps_symbols.sym");
  c.SetStartRegister(program.Config().startRegister);
  c.SetInterval(20);
  c.SetPCDStatus(2);
  widget.resize(1000, 600);
}

bool TraceRig::StartRefreshing() {
  widget.Start();
  // The pointer is read; refreshing reads the header and the description.
  if (!QTest::qWaitFor([this] { return control().ReadState() == 2; }, 5000)) return false;
  control().SetRunMode(2);
  return QTest::qWaitFor([this] { return control().ReadState() >= 3; }, 5000);
}

bool TraceRig::WriteAndWait(int count, int rows) {
  program.WriteRecords(count);
  return QTest::qWaitFor([&] { return widget.Table()->model()->rowCount() >= rows; }, 5000);
}

int TraceRig::ModelColumn(const QString& caption) const {
  const QAbstractItemModel* model = widget.Table()->model();
  for (int column = 0; column < model->columnCount(); ++column) {
    if (model->headerData(column, Qt::Horizontal).toString() == caption) return column;
  }
  return -1;
}

QString TraceRig::Cell(int modelRow, int modelColumn) const {
  const QAbstractItemModel* model = widget.Table()->model();
  return model->data(model->index(modelRow, modelColumn)).toString();
}

}  // namespace vantrel::testing
