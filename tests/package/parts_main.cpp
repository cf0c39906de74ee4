// Uses each optional library of the installed package once, so that building and running
// this proves that its exported target brings what it links: the record history (SQLite and
// a writer thread), the Modbus TCP server and client (libmodbus and a reader thread) and the Qt
// settings bag (Qt).
#include <vantrel/history/sqlite_history.h>
#include <vantrel/hosts/modbus/modbus_client.h>
#include <vantrel/hosts/modbus/modbus_server.h>
#include <vantrel/poll_event_loop.h>
#include <vantrel/qt/settings_property_bag.h>

#include <QSettings>
#include <QString>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace {

int Fail(const std::string& why) {
  std::fprintf(stderr, "parts consumer: %s\n", why.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return Fail("usage: vantrel_parts_consumer SCRATCH_DIR");
  const std::filesystem::path scratch = argv[1];
  std::filesystem::remove_all(scratch);
  std::filesystem::create_directories(scratch);

  const std::string database = (scratch / "trace.db").string();
  std::string error;
  auto history = vantrel::history::SqliteHistory::Open(database, error);
  if (!history) return Fail("the record history does not open: " + error);
  history->Flush();
  if (!history->LastError().empty())
    return Fail("the record history fails: " + history->LastError());
  history.reset();
  if (!std::filesystem::is_regular_file(database)) return Fail(database + " was not created");

  // The installed server serves a register and the installed client reads it over TCP.
  vantrel::PollEventLoop loop;
  vantrel::hosts::RegisterSpace space;
  space.SetRegister(5, 1234567);
  vantrel::hosts::modbus::ModbusServer server(loop, space, {});
  if (!server.Listen("127.0.0.1", 0)) {
    return Fail("the Modbus server does not listen: " + server.LastError());
  }
  std::vector<int32_t> answer;
  std::string linkError;
  vantrel::hosts::modbus::ModbusClient::Callbacks callbacks;
  callbacks.answer = [&](std::vector<int32_t> words) {
    answer = std::move(words);
    loop.Quit();
  };
  callbacks.error = [&](std::string message) { linkError = std::move(message); };
  {
    vantrel::hosts::modbus::ModbusClient client(
        {"127.0.0.1", server.Port()}, 1, {},
        [&loop](std::function<void()> task) { loop.Post(std::move(task)); }, callbacks);
    client.ReadRegisters(5, 1);
    loop.RunFor(std::chrono::seconds(10));
  }
  server.Close();
  if (answer != std::vector<int32_t>{1234567}) {
    return Fail("the Modbus client did not read register 5 from the server " + linkError);
  }

  QSettings settings(QString::fromStdString((scratch / "viewer.ini").string()),
                     QSettings::IniFormat);
  vantrel::qt::SettingsPropertyBag bag(settings);
  bag.WriteProperty("Title", std::string("Pumps"), std::string());
  const vantrel::PropertyValue title = bag.ReadProperty("Title", std::string());
  if (!std::holds_alternative<std::string>(title) || std::get<std::string>(title) != "Pumps") {
    return Fail("the Qt settings bag does not keep a property");
  }

  std::puts("installed history, modbus and qt libraries work");
  return 0;
}
