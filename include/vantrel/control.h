#pragma once
// vantrel::Control: the trace-viewer control a host embeds. The host configures it through
// properties, answers its read requests by assigning DataBlock, and hears from it through
// ControlEvents. Everything runs on the host's thread; no call throws.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "vantrel/clock.h"
#include "vantrel/control_events.h"
#include "vantrel/export_files.h"
#include "vantrel/graph_model.h"
#include "vantrel/prompts.h"
#include "vantrel/property_bag.h"
#include "vantrel/row_sink.h"
#include "vantrel/surface.h"
#include "vantrel/table_export.h"
#include "vantrel/table_model.h"
#include "vantrel/timer.h"

namespace vantrel {

// The control's container: told when a property changed so that the host saves it, and
// asked for its ambient font.
class Container {
 public:
  virtual ~Container() = default;
  virtual void PropertyChanged(std::string_view name) { (void)name; }
  virtual FontState AmbientFont() const { return {"Courier", 10}; }
};

// The services a control needs from its platform, handed over at construction. They must
// outlive the control.
// The ModulError number of a record history that lost rows (ReportHistoryError); the
// control's own errors use 10 to 13 and 99.
inline constexpr int16_t kHistoryErrType = 20;

struct ControlServices {
  TimerFactory& timers;
  const Clock& clock;
  Prompts& prompts;
  Container* container = nullptr;
  // The control's own directory (value-text files are also looked for there) and the
  // directory exports go to when no export file is set.
  std::string ownDirectory = ".";
  std::string currentDirectory = ".";
  // The writer of .xlsx exports (ExportFormat 1), e.g. vantrel::XlsxExporter of the
  // vantrel_xlsx library; without one such an export fails with a message.
  TableExporter* xlsx = nullptr;
  // How exports open and replace files; without one, with the standard library only (see
  // vantrel/export_files.h; POSIX hosts hand over vantrel::PosixExportFiles()).
  ExportFiles* exportFiles = nullptr;
};

class Control {
 public:
  Control(ControlEvents& events, ControlServices services);
  ~Control();
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  // Properties, named as the control's property sheet names them.
  bool Enabled() const;
  void SetEnabled(bool value);
  const std::string& GridFontName();
  void SetGridFontName(std::string value);
  const std::string& GridFontSize();
  void SetGridFontSize(std::string value);
  bool DateStampCol() const;
  void SetDateStampCol(bool value);
  bool TimeStampCol() const;
  void SetTimeStampCol(bool value);
  bool PCDStatusCol() const;
  void SetPCDStatusCol(bool value);
  int32_t MaxRows() const;
  void SetMaxRows(int32_t value);
  int32_t MaxGraph() const;
  void SetMaxGraph(int32_t value);
  int16_t StartRegister() const;
  void SetStartRegister(int16_t value);
  int32_t PCDStatus() const;
  void SetPCDStatus(int32_t value);
  const std::string& ResourcePath() const;
  void SetResourcePath(std::string value);
  const std::string& ProjectPath() const;
  void SetProjectPath(std::string value);
  const std::string& UserFile() const;
  void SetUserFile(std::string value);
  const std::string& SymbFile() const;
  void SetSymbFile(std::string value);
  const std::string& ExportFile() const;
  void SetExportFile(std::string value);
  bool AutoExport() const;
  void SetAutoExport(bool value);
  int16_t IndexFile() const;
  void SetIndexFile(int16_t value);
  // 0 the Excel 2.x file, 1 an .xlsx workbook (needs ControlServices::xlsx), 2 a CSV file.
  int16_t ExportFormat() const;
  void SetExportFormat(int16_t value);
  // The record history the host keeps (e.g. a SQLite file); the control only carries it.
  const std::string& HistoryFile() const;
  void SetHistoryFile(std::string value);
  const std::string& SelColumn() const;
  void SetSelColumn(std::string value);
  bool Simulation() const;
  void SetSimulation(bool value);
  int16_t RunMode() const;
  void SetRunMode(int16_t value);
  int32_t Interval() const;
  void SetInterval(int32_t value);
  int16_t DisplayMode() const;
  void SetDisplayMode(int16_t value);

  // Read-only properties describing the buffer.
  const std::string& HeaderKey() const;
  int16_t HeaderVersion() const;
  int16_t BufferLen() const;
  int16_t RecordLen() const;
  int16_t RecordNumber() const;
  int32_t RecordCount() const;

  // The host's answer to ReadPCDReg / ReadPCDDB: element 0 is the first word asked for.
  void SetDataBlock(std::span<const int32_t> values);

  // Methods.
  void Refresh();
  void Start();
  void Reset();
  void Clear();
  void Crypt(std::string_view FileName);

  // Property bag: defaults for a new control, or the settings saved with the host's form.
  void InitProperties();
  void ReadProperties(const PropertyBag& bag);
  void WriteProperties(PropertyBag& bag) const;

  // What a user does on the control's surface.
  void ClickGraphButton();
  void ClickExportButton();
  void ClickInfoButton();
  // A mouse press on the table, `y` twips below its top edge.
  void PressTable(int32_t y);
  // A double-click on a cell of table column `column`.
  void DoubleClickTable(int column);

  // What views present, and the reading state for hosts that show it.
  const Surface& GetSurface() const;
  TableModel& Table();
  const TableModel& Table() const;
  const GraphModel& Graph() const;
  int16_t ReadState() const;
  void AddSurfaceObserver(SurfaceObserver* observer);
  // Every row added to the table, and every description loaded, is handed to the sinks.
  void AddRowSink(RowSink* sink);
  // The writer of .xlsx exports, for hosts that create it after the control.
  void SetXlsxExporter(TableExporter* exporter);
  // How exports open and replace files, for hosts that choose it after the control.
  void SetExportFiles(ExportFiles* files);
  void RemoveRowSink(RowSink* sink);
  // Raises ModulError with kHistoryErrType: a sink of the host lost rows, and whoever
  // watches the control's errors must learn it.
  void ReportHistoryError(std::string_view message);
  void RemoveSurfaceObserver(SurfaceObserver* observer);

  struct Module;  // the control's state, shared by its subsystems

 private:
  std::unique_ptr<Module> module_;
};

}  // namespace vantrel
