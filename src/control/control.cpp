#include "vantrel/control.h"

#include "control/clear.h"
#include "control/export_control.h"
#include "control/graph_control.h"
#include "control/guard.h"
#include "control/module.h"
#include "control/run_control.h"
#include "control/trace_loading.h"
#include "description/cipher.h"

namespace vantrel {

Control::Control(ControlEvents& events, ControlServices services)
    : module_(std::make_unique<Module>(events, std::move(services))) {
  Module& m = *module_;
  m.readTimer->SetTickHandler([&m] { Guarded(m, "ReadTimer", [&] { OnReadTimer(m); }); });
  m.simulTimer->SetTickHandler([&m] {
    Guarded(m, "SimulTimer",
            [&] { m.cycle.Simulation().WriteNextRecord(m.description.RecordLength); });
  });
  Guarded(m, "Initialize", [&] { InitializeControl(m); });
}

Control::~Control() = default;

void Control::SetDataBlock(std::span<const int32_t> values) {
  Module& m = *module_;
  Guarded(m, "DataBlock", [&] {
    if (!m.props.Enabled || m.cycle.State() <= kStateDisabled) return;
    m.MarkChanged("DataBlock");
    m.cycle.TakeDataBlock(values);
  });
}

void Control::Refresh() {
  Module& m = *module_;
  Guarded(m, "Refresh", [&] {
    for (SurfaceObserver* observer : m.surfaceObservers)
      observer->RepaintRequested();
  });
}

void Control::Start() {
  Module& m = *module_;
  Guarded(m, "Start", [&] {
    if (!m.props.Enabled) return;
    m.cycle.SetState(kStateWaitStart);
    m.cycle.RequestRead(1);
  });
}

void Control::Reset() {
  Module& m = *module_;
  Guarded(m, "Reset", [&] {
    m.cycle.ResetBuffer();
    if (m.cycle.State() > kStateDisabled) m.cycle.SetState(kStateDisabled);
    InitializeControl(m);
    ShowGridView(m);
    m.grid.ClearCells();
    m.grid.SetRedraw(true);
  });
}

void Control::Clear() {
  Module& m = *module_;
  Guarded(m, "Clear", [&] { ClearTable(m); });
}

void Control::Crypt(std::string_view FileName) {
  Module& m = *module_;
  Guarded(m, "Crypt", [&] {
    const std::string result = EncryptDescription(FileName);
    m.services.prompts.ShowMessage("File " + std::string(FileName) + "\r\r" + result,
                                   "Cryptage Vantrel", MessageIcon::Information,
                                   MessageButtons::Ok);
  });
}

void Control::ClickGraphButton() {
  Module& m = *module_;
  Guarded(m, "cmdGraph", [&] { vantrel::ClickGraphButton(m); });
}

void Control::ClickExportButton() {
  Module& m = *module_;
  Guarded(m, "cmdExport", [&] { ExportFromButton(m); });
}

void Control::ClickInfoButton() {
  Module& m = *module_;
  Guarded(m, "cmdInfo", [&] { ShowInfo(m); });
}

void Control::PressTable(int32_t y) {
  Module& m = *module_;
  Guarded(m, "fxgRecords", [&] { m.headerSelection.Press(m.grid, y); });
}

void Control::DoubleClickTable(int column) {
  Module& m = *module_;
  Guarded(m, "fxgRecords", [&] { m.headerSelection.DoubleClick(m.grid, column); });
}

const GraphModel& Control::Graph() const {
  return module_->graph.Model();
}

const Surface& Control::GetSurface() const {
  return module_->surface;
}
TableModel& Control::Table() {
  return module_->grid;
}
const TableModel& Control::Table() const {
  return module_->grid;
}
int16_t Control::ReadState() const {
  return module_->cycle.State();
}

void Control::SetXlsxExporter(TableExporter* exporter) {
  module_->services.xlsx = exporter;
}

void Control::SetExportFiles(ExportFiles* files) {
  module_->services.exportFiles = files;
}

void Control::AddRowSink(RowSink* sink) {
  module_->rows.AddSink(sink);
}

void Control::RemoveRowSink(RowSink* sink) {
  module_->rows.RemoveSink(sink);
}

void Control::ReportHistoryError(std::string_view message) {
  module_->RaiseError(kHistoryErrType, message);
}

void Control::AddSurfaceObserver(SurfaceObserver* observer) {
  if (observer != nullptr) module_->surfaceObservers.push_back(observer);
}

void Control::RemoveSurfaceObserver(SurfaceObserver* observer) {
  std::erase(module_->surfaceObservers, observer);
}

}  // namespace vantrel
