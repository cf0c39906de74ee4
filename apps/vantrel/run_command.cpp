#include "run_command.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "console_prompts.h"
#include "controller_links.h"
#include "description/profile_file.h"
#include "event_log.h"
#include "vantrel/control.h"
#include "vantrel/encoding.h"
#include "vantrel/history/record_history.h"
#include "vantrel/hosts/embedded_controller.h"
#include "vantrel/hosts/examples_directory.h"
#include "vantrel/hosts/program_file.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/poll_event_loop.h"
#include "vantrel/posix_export_files.h"
#include "vantrel/xlsx_exporter.h"

namespace vantrel::cli {
namespace {

// The loop that SIGINT and SIGTERM end; set only while a run is under way.
std::atomic<PollEventLoop*> signalledLoop{nullptr};

extern "C" void OnStopSignal(int) {
  if (PollEventLoop* loop = signalledLoop.load()) loop->RequestQuit();
}

class RunHost : public ControlEvents {
 public:
  RunHost(PollEventLoop& loop, EventLog& log, int64_t rowLimit)
      : loop_(loop), log_(log), rowLimit_(rowLimit) {}

  Control* control = nullptr;
  hosts::ControllerLink* link = nullptr;
  bool failed = false;
  bool printHeader = true;

  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    log_.Write("ReadPCDReg", "\"RegisterNumber\":" + std::to_string(RegisterNumber) +
                                 ",\"NumberToRead\":" + std::to_string(NumberToRead));
    link->ReadRegisters(RegisterNumber, NumberToRead);
  }
  void ReadPCDDB(int16_t DBNumber, int16_t DBOffset, int16_t NumberToRead) override {
    log_.Write("ReadPCDDB", "\"DBNumber\":" + std::to_string(DBNumber) +
                                ",\"DBOffset\":" + std::to_string(DBOffset) +
                                ",\"NumberToRead\":" + std::to_string(NumberToRead));
    link->ReadDataBlock(DBNumber, DBOffset, NumberToRead);
  }
  void ModulError(int16_t ErrType, std::string_view ErrMessage) override {
    log_.Write("ModulError", "\"ErrType\":" + std::to_string(ErrType) +
                                 ",\"ErrMessage\":" + JsonString(ErrMessage));
    std::fprintf(stderr, "ModulError %d: %s\n", ErrType, Cp1252ToUtf8Line(ErrMessage).c_str());
    // A failed description or record load leaves nothing more to read; a history's loss
    // is told, and reading goes on.
    if (ErrType != kHistoryErrType && control != nullptr &&
        (control->RunMode() == 0 || control->ReadState() < 3)) {
      failed = true;
      loop_.Quit();
    }
  }
  void OutputLine(std::string_view DataLine) override {
    log_.Write("OutputLine", "\"DataLine\":" + JsonString(DataLine));
    // One poll may bring more rows than were asked for; the rest stay in the table only.
    if (rowLimit_ < 0 || (rowLimit_ > 0 && rows_ >= rowLimit_)) return;
    if (rows_ == 0 && printHeader) PrintHeader();
    std::printf("%s\n", Cp1252ToUtf8Line(DataLine).c_str());
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
      // Rows nobody receives are no run: stop, and let the export on exit keep them.
      std::fprintf(stderr, "vantrel run: cannot write the rows to standard output: %s\n",
                   std::strerror(errno));
      failed = true;
      rowLimit_ = -1;
      loop_.Quit();
      return;
    }
    if (rowLimit_ > 0 && ++rows_ >= rowLimit_) loop_.Quit();
    if (rowLimit_ == 0) ++rows_;
  }
  void Status(int16_t ReadStatus) override {
    log_.Write("Status", "\"ReadStatus\":" + std::to_string(ReadStatus));
    // Once the pointer is read, start refreshing.
    if (ReadStatus == 2 && !started_) {
      started_ = true;
      loop_.Post([this] { control->SetRunMode(2); });
    }
  }
  void PCDCmd(int16_t Cmd) override {
    log_.Write("PCDCmd", "\"Cmd\":" + std::to_string(Cmd));
    if (Cmd == 9) loop_.Quit();  // the controller asks its host to shut down
  }
  void NewExportFile() override { log_.Write("NewExportFile", ""); }

 private:
  // The captions of the columns that the data lines carry: the stamp columns that are
  // shown, then the trace columns.
  void PrintHeader() {
    const TableModel& table = control->Table();
    std::string line;
    auto add = [&](int column) {
      if (!line.empty()) line += '\t';
      line += table.Text(0, column);
    };
    if (control->DateStampCol()) add(1);
    if (control->TimeStampCol()) add(2);
    if (control->PCDStatusCol()) add(3);
    for (int column = kFirstTraceColumn; column < table.ColumnCount(); ++column)
      add(column);
    std::printf("%s\n", Cp1252ToUtf8Line(line).c_str());
  }

  PollEventLoop& loop_;
  EventLog& log_;
  int64_t rowLimit_;
  int64_t rows_ = 0;
  bool started_ = false;
};

void ApplyOptions(Control& control, const RunOptions& o, int16_t startRegister) {
  control.SetStartRegister(o.startRegister.value_or(startRegister));
  if (!o.resourcePath && o.propertiesFile.empty()) {
    // The bundled example's description is found there, whichever way its controller is
    // reached (`vantrel controller` runs the same program).
    const std::string examples = hosts::ExamplesDirectory();
    control.SetResourcePath(examples);
    if (!o.symbols) control.SetSymbFile(examples + "/pumps_symbols.sym");
  }
  hosts::ApplyControlOptions(control, o);
  if (o.simulation) {
    // The simulation reads no buffer header, so the buffer key it compares with the user
    // buffer file's is empty: a file that names a key is refused, which says little on its
    // own.
    if (o.userFile) {
      const std::string key = ProfileFile::Load(*o.userFile).ReadString("USER_BUFFER", "HeaderKey");
      if (!key.empty()) {
        std::fprintf(stderr,
                     "vantrel run: the simulation reads no buffer header, so its buffer key is "
                     "empty and %s (HeaderKey=%s) will be refused; simulate a copy with "
                     "HeaderKey= (empty)\n",
                     o.userFile->c_str(), Cp1252ToUtf8Line(key).c_str());
      }
    }
    control.SetSimulation(true);
  }
}

// The embedded controller's program: the bundled pump station unless a file names another.
std::optional<hosts::ProgramFile> EmbeddedProgram(const RunOptions& o) {
  hosts::ProgramFile program{hosts::PumpStationProgram(), 100};
  if (o.programFile) {
    std::string error;
    auto file = hosts::ReadProgramFile(*o.programFile, error);
    if (!file) {
      std::fprintf(stderr, "vantrel run: %s\n", error.c_str());
      return std::nullopt;
    }
    program = std::move(*file);
  }
  if (o.recordIntervalMs) program.recordIntervalMs = *o.recordIntervalMs;
  return program;
}

}  // namespace

int Run(const RunOptions& o) {
  const bool embedded = o.controller == "sim";
  if (!embedded && o.controller.rfind("modbus://", 0) != 0) {
    std::fprintf(stderr, "vantrel run: unknown controller '%s' (use sim or modbus://HOST:PORT)\n",
                 o.controller.c_str());
    return 2;
  }
  EventLog log(o.eventsFile);
  if (!log.Ok()) {
    std::fprintf(stderr, "vantrel run: cannot write the events to %s\n", o.eventsFile.c_str());
    return 2;
  }
  PollEventLoop loop;
  SystemClock clock;
  ConsolePrompts prompts;
  prompts.answer = o.yes ? MessageResult::Yes : MessageResult::No;
  prompts.chosenFile = o.choose;

  RunHost host(loop, log, o.records);
  XlsxExporter xlsx;
  ControlServices services{loop, clock, prompts};
  services.xlsx = &xlsx;
  services.exportFiles = &PosixExportFiles();
  Control control(host, services);
  host.control = &control;

  hosts::LinkHandlers handlers;
  handlers.answer = [&control](std::vector<int32_t> words) { control.SetDataBlock(words); };
  // A transport that loses its controller says so through the controller status.
  handlers.connection = [&control](bool connected) { control.SetPCDStatus(connected ? 2 : 1); };
  handlers.error = [](const std::string& message) {
    std::fprintf(stderr, "vantrel run: %s\n", message.c_str());
  };
  std::unique_ptr<hosts::ControllerLink> link;
  int16_t defaultStartRegister = hosts::TraceProgramConfig{}.startRegister;
  if (embedded) {
    auto program = EmbeddedProgram(o);
    if (!program) return 2;
    defaultStartRegister = program->program.startRegister;
    link = std::make_unique<hosts::EmbeddedController>(
        loop, clock, [&loop](std::function<void()> task) { loop.Post(std::move(task)); },
        std::move(*program), std::move(handlers));
  } else {
    std::string error;
    link = OpenModbusLink(o.controller, o.modbus, loop, std::move(handlers), error);
    if (!link) {
      std::fprintf(stderr, "vantrel run: %s\n", error.c_str());
      return 2;
    }
  }
  host.link = link.get();
  if (!o.propertiesFile.empty()) {
    FilePropertyBag bag;
    if (!bag.Load(o.propertiesFile)) {
      std::fprintf(stderr, "vantrel run: cannot read %s\n", o.propertiesFile.c_str());
      return 2;
    }
    for (const auto& problem : bag.Problems()) {
      std::fprintf(stderr, "%s:%d: %s\n", o.propertiesFile.c_str(), problem.line,
                   problem.message.c_str());
    }
    control.ReadProperties(bag);
  } else {
    control.InitProperties();
  }
  ApplyOptions(control, o, defaultStartRegister);

  // The record history: the option, or what the properties file says.
  if (o.historyFile) control.SetHistoryFile(*o.historyFile);
  std::unique_ptr<history::RecordHistory> recordHistory;
  if (!control.HistoryFile().empty()) {
    std::string error;
    history::RecordHistorySettings settings;
    settings.target = control.HistoryFile();
    if (o.historySpool) settings.spoolDirectory = *o.historySpool;
    if (o.historySpoolLimit) settings.spoolLimitBytes = *o.historySpoolLimit;
    settings.source = o.controller;
    settings.notice = [](std::string_view message) {
      std::fprintf(stderr, "vantrel run: %.*s\n", static_cast<int>(message.size()), message.data());
    };
    settings.post = [&loop](std::function<void()> task) { loop.Post(std::move(task)); };
    recordHistory = history::RecordHistory::Open(std::move(settings), control, error);
    if (!recordHistory) {
      std::fprintf(stderr, "vantrel run: %s\n", error.c_str());
      return 2;
    }
  }

  signalledLoop = &loop;
  std::signal(SIGINT, OnStopSignal);
  std::signal(SIGTERM, OnStopSignal);
  // The embedded controller is running from the start; a remote one once it answers.
  control.SetPCDStatus(embedded ? 2 : 1);
  control.Start();
  if (o.durationSeconds > 0) {
    loop.RunFor(std::chrono::milliseconds(static_cast<int64_t>(o.durationSeconds * 1000)));
  } else {
    loop.Run();
  }
  signalledLoop = nullptr;
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);

  if (o.exportOnExit) {
    const int rows = control.Table().DataRowCount();
    control.ClickExportButton();
    // The table is emptied only by a successful export.
    if (rows > 0 && control.Table().DataRowCount() == 0) {
      std::fprintf(stderr, "vantrel run: %d rows exported to %s\n", rows,
                   control.ExportFile().c_str());
    } else if (rows > 0) {
      std::fprintf(stderr, "vantrel run: the export to %s failed\n", control.ExportFile().c_str());
      return 1;
    }
  }
  if (log.WriteFailed()) {
    std::fprintf(stderr, "vantrel run: cannot write the events to %s\n", o.eventsFile.c_str());
    host.failed = true;
  }
  if (recordHistory) {
    const std::string failure = recordHistory->Close();
    if (!failure.empty()) {
      std::fprintf(stderr, "vantrel run: %s\n", failure.c_str());
      return 1;
    }
  }
  return host.failed ? 1 : 0;
}

}  // namespace vantrel::cli
