#pragma once
// The state of one control: its persisted properties, the buffer and walk state of the
// reading cycle, the trace description, the table and surface models and the services. The
// subsystem folders each act on it through small functions; one Module per control instance.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "decoding/record_decoder.h"
#include "description/trace_description.h"
#include "symbols/symbol_collection.h"
#include "symbols/value_texts.h"
#include "vantrel/control.h"
#include "vantrel/graph_model.h"
#include "vantrel/row_sink.h"

namespace vantrel {

// ModulError numbers.
inline constexpr int16_t kErrStartOrDescription = 10;
inline constexpr int16_t kErrHeader = 11;
inline constexpr int16_t kErrRecords = 12;
inline constexpr int16_t kErrFieldReader = 13;
inline constexpr int16_t kErrUnexpected = 99;

// Reading states.
inline constexpr int16_t kStateDisabled = 0;
inline constexpr int16_t kStateWaitStart = 1;
inline constexpr int16_t kStateHeader = 2;
inline constexpr int16_t kStateRunning = 3;
inline constexpr int16_t kStateLoading = 4;

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

// The PC date and time of the last decoded record or status change, as the rows show them.
struct RowStamp {
  DateTime at;
  // The second the texts show: records of one poll share it.
  DateTime shown;
  bool valid = false;
  std::string date;  // "dd/mm/yy"
  std::string time;  // "hh:mm:ss"
  CellReading dateReading;
  CellReading timeReading;
};

// What the reading cycle knows of the buffer in the controller.
struct BufferState {
  // -1 until the control's initialisation sets it to 0, so that creation reports Status(0).
  int16_t ReadState = -1;
  int16_t BufferStart = 0;
  bool DBMode = false;
  int16_t HeaderLength = 16;
  std::string FormatKey;
  std::string HeaderKey;
  int32_t HeaderVersion = 0;
  int32_t BufferLen = 0;
  int16_t RecordReadOffset = 0;
  int16_t RecordsToRead = 0;
  int16_t ReadCount = 0;
  int32_t RequestOffset = 0;
  int32_t RequestLength = 0;
  // A request event has been raised and its DataBlock has not come yet. The read timer does
  // not ask again meanwhile, so that a slow host's answer is never taken for another read.
  bool AnswerPending = false;
  int16_t TicksWaiting = 0;
  int32_t LastWord = 0;
  int32_t CommandWord = 0;
  int32_t LastCommand = 0;
  int32_t ExportIndex = 0;
};

// Counters of the walk over the controller's ring of records.
struct WalkCounters {
  int32_t BufferCounter = 0;
  int32_t LastBufferCounter = 0;
  int32_t WriteIndex = 0;
  int32_t RecordNumber = 0;
  int16_t LastIndex = 0;
  bool FirstRead = true;
  int32_t RecordCount = 0;
};

struct Control::Module {
  Module(ControlEvents& events, ControlServices services);

  ControlEvents& events;
  ControlServices services;

  PropertyFields props;
  std::vector<std::string> SearchPaths;  // ResourcePath split at commas
  int16_t appliedRunMode = 0;
  bool applyingRunMode = false;  // set while ApplyRunMode runs (a host may answer inside it)

  BufferState buffer;
  WalkCounters walk;
  TraceDescription description;
  cSymbol symbols;
  cValues valueTexts;
  // Decimal separator of decimal texts in the table.
  char decimalSeparator = '.';
  // What decoding carries from record to record (the current application).
  DecodingContext decoding;
  RecordDecoder decoder;
  DecodedRecord decoded;

  int16_t ErrType = 0;
  std::string ErrMsg;

  Surface surface;
  TableModel grid;
  bool gridRedrawPending = false;
  bool GraphShown = false;
  GraphModel chart;
  // Table columns drawn as series, with their header texts, from the last graph set-up.
  std::vector<std::pair<int, std::string>> GraphColumns;
  // Whether the last mouse press on the table hit its header row.
  bool pressOnHeader = false;
  std::unique_ptr<Timer> readTimer;
  std::unique_ptr<Timer> simulTimer;
  std::vector<SurfaceObserver*> surfaceObservers;

  // The simulated controller: header (write counter, last slot written 1-based, ring
  // size at index 3), the ring of records, and the two phase angles in degrees.
  std::array<int32_t, 5> SimHeader{};
  std::vector<int32_t> SimRecords;
  int32_t SimRecordCount = 0;
  double SimAngle1 = 0;
  int16_t SimAngle2 = 0;

  int32_t LastPCDStatus = 0;
  std::string PCDStatusText;
  RowStamp stamp;
  // Hosts' row sinks.
  std::vector<RowSink*> rowSinks;
  // The OutputLine text of a record row, built in a buffer kept across rows.
  std::string eventText;
  // Set while an export ordered by the controller's command word runs.
  bool CommandedExport = false;
  // The text of the last column that could not be exported.
  std::string LastExportError;

  // Tells the container that a property changed, so that the host saves it.
  void MarkChanged(std::string_view property);
  // Tells the views that the surface changed.
  void SurfaceChanged();
  // Raises ModulError with the number and text given.
  void RaiseError(int16_t errType, std::string_view message);
};

using Module = Control::Module;

// The module's buffer state as after a reset: no format, no key, every counter 0.
void ResetBufferState(Module& m);
// Creation of a control, also re-run by Reset: title, empty table, reading state 0.
void InitializeControl(Module& m);

}  // namespace vantrel
