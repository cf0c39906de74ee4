// console-host: a control reading the trace of the virtual controller that comes with
// Vantrel (the pump station), printing its rows until it has printed ROWS of them.
//
//   console-host [ROWS]        (10 rows by default; gives up after 30 seconds)

#include <vantrel/control.h>
#include <vantrel/hosts/embedded_controller.h>
#include <vantrel/hosts/examples_directory.h>
#include <vantrel/hosts/pump_station.h>
#include <vantrel/poll_event_loop.h>
#include <vantrel/posix_export_files.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// The control's message boxes and file dialog, for a host without a screen: messages go to
// standard error, a question is answered No and no file is chosen.
class ConsolePrompts final : public vantrel::Prompts {
 public:
  vantrel::MessageResult ShowMessage(std::string_view text, std::string_view title,
                                     vantrel::MessageIcon,
                                     vantrel::MessageButtons buttons) override {
    std::fprintf(stderr, "[%.*s] %.*s\n", static_cast<int>(title.size()), title.data(),
                 static_cast<int>(text.size()), text.data());
    return buttons == vantrel::MessageButtons::YesNo ? vantrel::MessageResult::No
                                                     : vantrel::MessageResult::Ok;
  }
  std::optional<std::string> ChooseFileToOpen(const vantrel::FileOpenRequest&) override {
    return std::nullopt;
  }
  void ShowShutDownNotice(std::string_view caption, std::string_view message, std::string_view,
                          int) override {
    std::fprintf(stderr, "[%.*s] %.*s\n", static_cast<int>(caption.size()), caption.data(),
                 static_cast<int>(message.size()), message.data());
  }
};

// The host's side of the control: it passes read requests to the controller link, starts
// refreshing once the start register is read, and prints the rows.
class ConsoleHost final : public vantrel::ControlEvents {
 public:
  ConsoleHost(vantrel::PollEventLoop& loop, int rows) : loop_(loop), rowsWanted_(rows) {}

  vantrel::Control* control = nullptr;
  vantrel::hosts::ControllerLink* link = nullptr;

  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    link->ReadRegisters(RegisterNumber, NumberToRead);
  }
  void ReadPCDDB(int16_t DBNumber, int16_t DBOffset, int16_t NumberToRead) override {
    link->ReadDataBlock(DBNumber, DBOffset, NumberToRead);
  }
  void Status(int16_t ReadStatus) override {
    // State 2: the buffer's place is known. Run mode 2 is set from the loop, after this
    // event has returned.
    if (ReadStatus == 2 && !running_) {
      running_ = true;
      loop_.Post([this] { control->SetRunMode(2); });
    }
  }
  void OutputLine(std::string_view DataLine) override {
    if (rowsPrinted_ >= rowsWanted_) return;  // one poll may bring more rows than wanted
    std::printf("%.*s\n", static_cast<int>(DataLine.size()), DataLine.data());
    if (++rowsPrinted_ == rowsWanted_) loop_.Quit();
  }
  void ModulError(int16_t ErrType, std::string_view ErrMessage) override {
    std::fprintf(stderr, "ModulError %d: %.*s\n", ErrType, static_cast<int>(ErrMessage.size()),
                 ErrMessage.data());
    loop_.Quit();
  }
  void PCDCmd(int16_t Cmd) override {
    if (Cmd == 9) loop_.Quit();  // the controller program asks its host to shut down
  }

  bool Done() const { return rowsPrinted_ == rowsWanted_; }

 private:
  vantrel::PollEventLoop& loop_;
  int rowsWanted_;
  int rowsPrinted_ = 0;
  bool running_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  const int rows = argc > 1 ? std::atoi(argv[1]) : 10;
  if (rows < 1) {
    std::fprintf(stderr, "usage: console-host [ROWS]\n");
    return 2;
  }

  // The platform: exports that never follow a link in the target's place, and one event
  // loop for the control's timers and the controller's answers.
  vantrel::PollEventLoop loop;
  vantrel::SystemClock clock;
  ConsolePrompts prompts;
  ConsoleHost host(loop, rows);
  vantrel::ControlServices services{loop, clock, prompts};
  services.exportFiles = &vantrel::PosixExportFiles();
  vantrel::Control control(host, services);
  host.control = &control;

  // The virtual controller: the pump station program writing a record every 100 ms. Its
  // answers reach the control on the loop's next turn, as a network transport's would.
  vantrel::hosts::LinkHandlers handlers;
  handlers.answer = [&control](std::vector<int32_t> words) { control.SetDataBlock(words); };
  vantrel::hosts::EmbeddedController controller(
      loop, clock, [&loop](std::function<void()> task) { loop.Post(std::move(task)); },
      {vantrel::hosts::PumpStationProgram(), 100}, std::move(handlers));
  host.link = &controller;

  // The settings a new control starts from, then this host's own.
  control.InitProperties();
#ifdef VANTREL_EXAMPLES_DIR
  const std::string examples = VANTREL_EXAMPLES_DIR;
#else
  const std::string examples = vantrel::hosts::ExamplesDirectory();
#endif
  control.SetResourcePath(examples);  // where PMP1_pumps.vtld is found
  control.SetSymbFile(examples + "/pumps_symbols.sym");
  control.SetStartRegister(controller.Program().Config().startRegister);
  control.SetInterval(250);
  control.SetPCDStatusCol(true);
  control.SetPCDStatus(2);  // the controller runs

  control.Start();
  loop.RunFor(std::chrono::seconds(30));
  return host.Done() ? 0 : 1;
}
