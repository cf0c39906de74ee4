// Runs a control against the embedded pump station from the installed Vantrel::hosts,
// exports the rows it shows to .xlsx through the installed Vantrel::xlsx and checks that
// the workbook was written: a zip archive, so it starts with "PK".
#include <vantrel/control.h>
#include <vantrel/hosts/embedded_controller.h>
#include <vantrel/hosts/pump_station.h>
#include <vantrel/manual_event_loop.h>
#include <vantrel/scripted_prompts.h>
#include <vantrel/xlsx_exporter.h>

#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int kRowsWanted = 5;

struct Host : vantrel::ControlEvents {
  vantrel::Control* control = nullptr;
  vantrel::hosts::ControllerLink* link = nullptr;
  std::deque<std::function<void()>>* posted = nullptr;
  int rows = 0;
  std::vector<std::string> errors;

  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    link->ReadRegisters(RegisterNumber, NumberToRead);
  }
  void ReadPCDDB(int16_t DBNumber, int16_t DBOffset, int16_t NumberToRead) override {
    link->ReadDataBlock(DBNumber, DBOffset, NumberToRead);
  }
  void ModulError(int16_t ErrType, std::string_view ErrMessage) override {
    errors.push_back(std::to_string(ErrType) + " " + std::string(ErrMessage));
  }
  void OutputLine(std::string_view) override { ++rows; }
  // Once the buffer's pointer is read, keep refreshing (as the command line host does).
  void Status(int16_t ReadStatus) override {
    if (ReadStatus == 2) posted->push_back([this] { control->SetRunMode(2); });
  }
};

int Fail(const std::string& why) {
  std::fprintf(stderr, "export consumer: %s\n", why.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return Fail("usage: vantrel_export_consumer EXAMPLES_DIR OUTPUT.xlsx");
  const std::string examples = argv[1];
  const std::string workbook = argv[2];
  std::filesystem::remove(workbook);

  vantrel::ManualEventLoop loop;
  vantrel::ScriptedPrompts prompts;
  vantrel::XlsxExporter xlsx;
  vantrel::ControlServices services{loop, loop.Clock(), prompts};
  services.xlsx = &xlsx;
  Host host;
  vantrel::Control control(host, services);

  // The controller answers on the host's next turn, from this queue.
  std::deque<std::function<void()>> posted;
  vantrel::hosts::LinkHandlers handlers;
  handlers.answer = [&control](std::vector<int32_t> words) { control.SetDataBlock(words); };
  const vantrel::hosts::TraceProgramConfig program = vantrel::hosts::PumpStationProgram();
  vantrel::hosts::EmbeddedController controller(
      loop, loop.Clock(), [&posted](std::function<void()> task) { posted.push_back(task); },
      {program, 100}, std::move(handlers));
  host.control = &control;
  host.link = &controller;
  host.posted = &posted;

  control.InitProperties();
  control.SetStartRegister(program.startRegister);
  control.SetResourcePath(examples);
  control.SetSymbFile(examples + "/pumps_symbols.sym");
  control.SetExportFormat(1);
  control.SetExportFile(workbook);
  control.SetPCDStatus(2);
  control.Start();

  // Ten simulated minutes at most; the pump station writes a record every 100 ms.
  for (int turn = 0; turn < 60'000 && host.rows < kRowsWanted && host.errors.empty(); ++turn) {
    while (!posted.empty()) {
      std::function<void()> task = std::move(posted.front());
      posted.pop_front();
      task();
    }
    loop.Advance(10);
  }
  if (!host.errors.empty()) return Fail("the control reported " + host.errors.front());
  if (host.rows < kRowsWanted) return Fail("only " + std::to_string(host.rows) + " rows arrived");

  control.ClickExportButton();
  if (!host.errors.empty()) return Fail("the export reported " + host.errors.front());
  for (const vantrel::ShownMessage& message : prompts.Messages()) {
    std::fprintf(stderr, "export consumer: message \"%s\": %s\n", message.title.c_str(),
                 message.text.c_str());
  }
  if (!std::filesystem::is_regular_file(workbook)) return Fail(workbook + " was not written");
  std::ifstream file(workbook, std::ios::binary);
  char magic[2] = {};
  if (!file.read(magic, 2) || magic[0] != 'P' || magic[1] != 'K')
    return Fail(workbook + " does not start with PK");
  std::printf("installed hosts and xlsx libraries work: %d rows, exported to %s\n", host.rows,
              workbook.c_str());
  return 0;
}
