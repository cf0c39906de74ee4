// The control's property getters and setters. Setters marked "Enabled only" ignore a value
// while the control is disabled; every accepted setter tells the container that the property
// changed so that the host saves it.

#include "control/graph_control.h"
#include "control/guard.h"
#include "control/module.h"
#include "control/resource_paths.h"
#include "control/row_intake.h"
#include "control/run_control.h"
#include "decoding/table_layout.h"
#include "platform/numbers.h"
#include "vantrel/control.h"

namespace vantrel {
namespace {

// Applies an "Enabled only" setter.
template <typename T, typename After>
void SetWhileEnabled(Module& m, const char* name, T& field, T value, After&& after) {
  Guarded(m, name, [&] {
    if (!m.props.Enabled) return;
    field = std::move(value);
    m.MarkChanged(name);
    after();
  });
}

template <typename T>
void SetWhileEnabled(Module& m, const char* name, T& field, T value) {
  SetWhileEnabled(m, name, field, std::move(value), [] {});
}

void SetStampColumn(Module& m, const char* name, bool& field, bool value, int column) {
  Guarded(m, name, [&] {
    field = value;
    m.MarkChanged(name);
    if (column < m.grid.ColumnCount()) {
      m.grid.SetColumnWidth(column, value ? kStampColumnWidth : 0);
    }
  });
}

}  // namespace

bool Control::Enabled() const {
  return module_->props.Enabled;
}
void Control::SetEnabled(bool value) {
  Module& m = *module_;
  Guarded(m, "Enabled", [&] {
    m.props.Enabled = value;
    m.MarkChanged("Enabled");
    IdleUpdate(m);
    if (value) ApplyRunMode(m);
  });
}

const std::string& Control::GridFontName() {
  Module& m = *module_;
  // The font reaches the table when the property is read, as the container does on saving.
  m.grid.SetFontName(m.props.GridFontName);
  return m.props.GridFontName;
}
void Control::SetGridFontName(std::string value) {
  Module& m = *module_;
  Guarded(m, "GridFontName", [&] {
    m.props.GridFontName = std::move(value);
    m.MarkChanged("GridFontName");
  });
}

const std::string& Control::GridFontSize() {
  Module& m = *module_;
  Guarded(m, "GridFontSize", [&] { m.grid.SetFontSize(Val(m.props.GridFontSize)); });
  return m.props.GridFontSize;
}
void Control::SetGridFontSize(std::string value) {
  Module& m = *module_;
  Guarded(m, "GridFontSize", [&] {
    m.props.GridFontSize = std::move(value);
    m.MarkChanged("GridFontSize");
  });
}

bool Control::DateStampCol() const {
  return module_->props.DateStampCol;
}
void Control::SetDateStampCol(bool value) {
  SetStampColumn(*module_, "DateStampCol", module_->props.DateStampCol, value, 1);
}
bool Control::TimeStampCol() const {
  return module_->props.TimeStampCol;
}
void Control::SetTimeStampCol(bool value) {
  SetStampColumn(*module_, "TimeStampCol", module_->props.TimeStampCol, value, 2);
}
bool Control::PCDStatusCol() const {
  return module_->props.PCDStatusCol;
}
void Control::SetPCDStatusCol(bool value) {
  SetStampColumn(*module_, "PCDStatusCol", module_->props.PCDStatusCol, value, 3);
}

int32_t Control::MaxRows() const {
  return module_->props.MaxRows;
}
void Control::SetMaxRows(int32_t value) {
  Module& m = *module_;
  Guarded(m, "MaxRows", [&] {
    m.props.MaxRows = value;
    m.MarkChanged("MaxRows");
    TrimRows(m);
  });
}

int32_t Control::MaxGraph() const {
  return module_->props.MaxGraph;
}
void Control::SetMaxGraph(int32_t value) {
  Module& m = *module_;
  Guarded(m, "MaxGraph", [&] {
    m.props.MaxGraph = value < 20 ? 20 : value;
    m.MarkChanged("MaxGraph");
    m.graph.Model().SetPointCount(m.props.MaxGraph);
    RefreshGraph(m);
  });
}

int16_t Control::StartRegister() const {
  return module_->props.StartRegister;
}
void Control::SetStartRegister(int16_t value) {
  Module& m = *module_;
  Guarded(m, "StartRegister", [&] {
    m.props.StartRegister = value;
    m.MarkChanged("StartRegister");
  });
}

int32_t Control::PCDStatus() const {
  return module_->props.PCDStatus;
}
void Control::SetPCDStatus(int32_t value) {
  Module& m = *module_;
  Guarded(m, "PCDStatus", [&] {
    m.props.PCDStatus = value;
    m.MarkChanged("PCDStatus");
    ChangePCDStatus(m);
  });
}

const std::string& Control::ResourcePath() const {
  return module_->props.ResourcePath;
}
void Control::SetResourcePath(std::string value) {
  Module& m = *module_;
  SetWhileEnabled(m, "ResourcePath", m.props.ResourcePath, std::move(value),
                  [&] { m.SearchPaths = SplitResourcePath(m.props.ResourcePath); });
}

const std::string& Control::ProjectPath() const {
  return module_->props.ProjectPath;
}
void Control::SetProjectPath(std::string value) {
  SetWhileEnabled(*module_, "ProjectPath", module_->props.ProjectPath, std::move(value));
}

const std::string& Control::UserFile() const {
  return module_->props.UserFile;
}
void Control::SetUserFile(std::string value) {
  SetWhileEnabled(*module_, "UserFile", module_->props.UserFile, std::move(value));
}

const std::string& Control::SymbFile() const {
  return module_->props.SymbFile;
}
void Control::SetSymbFile(std::string value) {
  SetWhileEnabled(*module_, "SymbFile", module_->props.SymbFile, std::move(value));
}

const std::string& Control::ExportFile() const {
  return module_->props.ExportFile;
}
void Control::SetExportFile(std::string value) {
  SetWhileEnabled(*module_, "ExportFile", module_->props.ExportFile, std::move(value));
}

bool Control::AutoExport() const {
  return module_->props.AutoExport;
}
void Control::SetAutoExport(bool value) {
  SetWhileEnabled(*module_, "AutoExport", module_->props.AutoExport, value);
}

int16_t Control::IndexFile() const {
  return module_->props.IndexFile;
}
void Control::SetIndexFile(int16_t value) {
  SetWhileEnabled(*module_, "IndexFile", module_->props.IndexFile, value);
}

int16_t Control::ExportFormat() const {
  return module_->props.ExportFormat;
}
void Control::SetExportFormat(int16_t value) {
  SetWhileEnabled(*module_, "ExportFormat", module_->props.ExportFormat, value);
}

const std::string& Control::HistoryFile() const {
  return module_->props.HistoryFile;
}
void Control::SetHistoryFile(std::string value) {
  SetWhileEnabled(*module_, "HistoryFile", module_->props.HistoryFile, std::move(value));
}

const std::string& Control::SelColumn() const {
  return module_->props.SelColumn;
}
void Control::SetSelColumn(std::string value) {
  SetWhileEnabled(*module_, "SelColumn", module_->props.SelColumn, std::move(value));
}

bool Control::Simulation() const {
  return module_->props.Simulation;
}
void Control::SetSimulation(bool value) {
  Module& m = *module_;
  SetWhileEnabled(m, "Simulation", m.props.Simulation, value, [&] {
    if (value) {
      m.cycle.Simulation().Restart();
      m.simulTimer->SetEnabled(true);
    } else {
      Reset();
    }
  });
}

int16_t Control::RunMode() const {
  return module_->props.RunMode;
}
void Control::SetRunMode(int16_t value) {
  Module& m = *module_;
  Guarded(m, "RunMode", [&] {
    if (!m.props.Enabled || value == m.props.RunMode) return;
    ChangeRunMode(m, value);
  });
}

int32_t Control::Interval() const {
  return module_->props.Interval;
}
void Control::SetInterval(int32_t value) {
  Module& m = *module_;
  SetWhileEnabled(m, "Interval", m.props.Interval, value,
                  [&] { m.readTimer->SetInterval(m.props.Interval); });
}

int16_t Control::DisplayMode() const {
  return module_->props.DisplayMode;
}
void Control::SetDisplayMode(int16_t value) {
  SetWhileEnabled(*module_, "DisplayMode", module_->props.DisplayMode, value);
}

const std::string& Control::HeaderKey() const {
  return module_->cycle.Buffer().HeaderKey;
}
int16_t Control::HeaderVersion() const {
  return static_cast<int16_t>(module_->cycle.Buffer().HeaderVersion);
}
int16_t Control::BufferLen() const {
  return static_cast<int16_t>(module_->cycle.Buffer().BufferLen);
}
int16_t Control::RecordLen() const {
  return module_->description.RecordLength;
}
int16_t Control::RecordNumber() const {
  return static_cast<int16_t>(module_->cycle.Walk().RecordNumber);
}
int32_t Control::RecordCount() const {
  return module_->rows.RecordCount();
}

}  // namespace vantrel
