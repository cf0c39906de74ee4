#pragma once
// The state of one control: its persisted properties, its components (reading cycle,
// decoder, row store, graph) and the surface it shows.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "acquisition/reading_cycle.h"
#include "decoding/record_decoder.h"
#include "decoding/row_store.h"
#include "description/trace_description.h"
#include "output/graph_view.h"
#include "symbols/symbol_collection.h"
#include "symbols/value_texts.h"
#include "vantrel/control.h"
#include "vantrel/graph_model.h"
#include "vantrel/row_sink.h"

namespace vantrel {

struct PropertyFields {
  bool Enabled = true;
  std::string ResourcePath = "C:\\";
  std::string ProjectPath;
  std::string UserFile;
  std::string SymbFile;
  int32_t Interval = 1000;
  int16_t RunMode = 0;
  bool Simulation = false;
  int16_t DisplayMode = 1;
  std::string GridFontName = "Courier";
  std::string GridFontSize = "10";
  bool DateStampCol = false;
  bool TimeStampCol = false;
  bool PCDStatusCol = false;
  int16_t StartRegister = 0;
  int32_t PCDStatus = 0;
  int32_t MaxRows = 500;
  int32_t MaxGraph = 20;
  std::string ExportFile;
  bool AutoExport = false;
  int16_t IndexFile = 0;
  std::string SelColumn;
  // 0 the Excel 2.x file, 1 an .xlsx workbook, 2 a CSV file.
  int16_t ExportFormat = 0;
  // Where the host keeps every row (a record history); the control only carries it.
  std::string HistoryFile;
};

// The control's state: its properties and the components that do its work. The functions
// of this folder carry out the control's steps on it; the components know nothing of it.
struct Control::Module : ReadingCycleOwner {
  Module(ControlEvents& events, ControlServices services);

  ControlEvents& events;
  ControlServices services;

  PropertyFields props;
  std::vector<std::string> SearchPaths;  // ResourcePath split at commas
  int16_t appliedRunMode = 0;
  bool applyingRunMode = false;  // set while ApplyRunMode runs (a host may answer inside it)

  TraceDescription description;
  cSymbol symbols;
  cValues valueTexts;
  // Decimal separator of decimal texts in the table.
  char decimalSeparator = '.';
  ReadingCycle cycle;
  // What decoding carries from record to record (the current application).
  DecodingContext decoding;
  RecordDecoder decoder;
  DecodedRecord decoded;

  Surface surface;
  TableModel grid;
  RowStore rows;
  bool gridRedrawPending = false;
  GraphView graph;
  HeaderSelection headerSelection;
  std::unique_ptr<Timer> readTimer;
  std::unique_ptr<Timer> simulTimer;
  std::vector<SurfaceObserver*> surfaceObservers;

  int32_t LastPCDStatus = 0;
  std::string PCDStatusText;
  // Set while an export ordered by the controller's command word runs.
  bool CommandedExport = false;
  // The text of the last column that could not be exported.
  std::string LastExportError;

  // Tells the container that a property changed, so that the host saves it.
  void MarkChanged(std::string_view property);
  // Tells the views that the surface changed.
  void SurfaceChanged();
  LineStamps Stamps() const { return {props.DateStampCol, props.TimeStampCol, props.PCDStatusCol}; }

  // What the reading cycle hands on.
  void ReadRegisters(int16_t first, int16_t count) override;
  void ReadDataBlock(int16_t block, int16_t offset, int16_t count) override;
  void ReadStateChanged(int16_t state, std::string_view statusText) override;
  void HeaderArrived() override;
  bool LoadDescription(std::string& errMsg) override;
  bool DecodeRecord(std::span<const int32_t> registers, size_t first) override;
  void RecordsMissed(int64_t count) override;
  void CounterRestarted() override;
  void CommandChanged(int32_t command) override;
  void RaiseError(int16_t errType, std::string_view message) override;
  void StopOnFailure(int16_t errType, std::string_view message) override;
  void ResumeRefresh() override;
};

using Module = Control::Module;

// Creation of a control, also re-run by Reset: title, empty table, reading state 0.
void InitializeControl(Module& m);

}  // namespace vantrel
