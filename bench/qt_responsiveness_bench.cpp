// How responsive the GUI thread stays while a VantrelWidget's table takes 1,000 rows a
// second at its row limit: a 10 ms timer runs alongside, and the delays of its ticks are
// reported as percentiles (target: 99th percentile under 16 ms, one frame).
//
// The rows come the way they come in use: a trace program in memory writes 100 records
// every 100 ms, the control polls every 100 ms, decodes the records and appends them; at
// the limit every new row drops the oldest. The table is filled to the limit before the
// measurement starts. Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTableView>
#include <QTimer>
#include <algorithm>
#include <string>
#include <vector>

#include "vantrel/control.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/qt/vantrel_widget.h"
#include "vantrel/scripted_prompts.h"

namespace {

constexpr int kRecordsPerBurst = 100;
constexpr int kBurstPeriodMs = 100;  // 1,000 records a second
constexpr int kProbePeriodMs = 10;
constexpr int kMeasuredSeconds = 10;

vantrel::hosts::TraceProgramConfig StreamingProgram() {
  vantrel::hosts::TraceProgramConfig config = vantrel::hosts::PumpStationProgram();
  // Room for several bursts between two polls, within the 4096 registers of a buffer.
  config.ringRecords = 600;
  return config;
}

// A widget reading a trace program from registers in memory, answering inside the request.
struct StreamRig {
  vantrel::ScriptedPrompts prompts;
  vantrel::SystemClock clock;
  vantrel::hosts::RegisterSpace space;
  vantrel::hosts::TraceProgram program{space, StreamingProgram(), clock};
  vantrel::qt::VantrelWidget widget{prompts};

  StreamRig() {
    program.Install();
    QObject::connect(&widget, &vantrel::qt::VantrelWidget::ReadPCDReg, &widget,
                     [this](qint16 first, qint16 count) {
                       widget.control().SetDataBlock(space.ReadRegisters(first, count));
                     });
    vantrel::Control& c = widget.control();
    c.SetResourcePath(VANTREL_EXAMPLES_DIR);
    c.SetSymbFile(VANTREL_EXAMPLES_DIR "/pumps_symbols.sym");
    c.SetStartRegister(program.Config().startRegister);
    c.SetInterval(kBurstPeriodMs);
    c.SetPCDStatus(2);
    widget.resize(1100, 700);
    widget.show();
  }

  void RunFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
  }

  // Reads a first burst, then fills the table to its limit with copies of the last row.
  bool FillTo(int rows) {
    widget.Start();
    widget.control().SetRunMode(2);
    program.WriteRecords(kRecordsPerBurst);
    for (int i = 0; i < 50 && widget.control().Table().DataRowCount() == 0; ++i)
      RunFor(kBurstPeriodMs);
    vantrel::TableModel& table = widget.control().Table();
    if (table.DataRowCount() == 0) return false;
    const vantrel::TableRow newest = table.Row(table.RowCount() - 1);
    while (table.DataRowCount() < rows)
      table.AddRow(newest);
    RunFor(200);
    return true;
  }
};

double Percentile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const auto index = static_cast<size_t>(share * static_cast<double>(values.size() - 1));
  return values[index];
}

// Arguments: the row limit, and whether the graph is shown instead of the table.
void BM_TimerDelayWhileRowsStream(benchmark::State& state) {
  const auto maxRows = static_cast<int32_t>(state.range(0));
  const bool graph = state.range(1) != 0;
  StreamRig rig;
  rig.widget.control().SetMaxRows(maxRows);
  if (!rig.FillTo(maxRows)) {
    state.SkipWithError("the control read no rows");
    return;
  }
  if (graph) rig.widget.control().ClickGraphButton();

  std::vector<double> delays;
  int64_t rowsAdded = 0;
  for (auto _ : state) {
    QTimer writer;
    writer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&writer, &QTimer::timeout,
                     [&] { rig.program.WriteRecords(kRecordsPerBurst); });
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    QElapsedTimer since;
    QObject::connect(&probe, &QTimer::timeout, [&] {
      const double elapsed = static_cast<double>(since.nsecsElapsed()) / 1e6;
      since.restart();
      delays.push_back(std::max(0.0, elapsed - kProbePeriodMs));
    });
    const int32_t before = rig.widget.control().RecordCount();
    writer.start(kBurstPeriodMs);
    since.start();
    probe.start(kProbePeriodMs);
    rig.RunFor(kMeasuredSeconds * 1000);
    probe.stop();
    writer.stop();
    rowsAdded += rig.widget.control().RecordCount() - before;
  }
  state.counters["p50_delay_ms"] = Percentile(delays, 0.50);
  state.counters["p99_delay_ms"] = Percentile(delays, 0.99);
  state.counters["max_delay_ms"] = Percentile(delays, 1.0);
  state.counters["rows_per_s"] =
      static_cast<double>(rowsAdded) / (kMeasuredSeconds * static_cast<double>(state.iterations()));
  state.counters["table_rows"] = rig.widget.Table()->model()->rowCount();
}

BENCHMARK(BM_TimerDelayWhileRowsStream)
    ->ArgNames({"max_rows", "graph"})
    ->Args({100000, 0})
    ->Args({100000, 1})
    ->Args({500, 0})
    ->Iterations(1)
    ->Unit(benchmark::kSecond)
    ->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
