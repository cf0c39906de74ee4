#include "controller_command.h"

#include <unistd.h>
#include <CLI/CLI.hpp>
#include <atomic>
#include <csignal>
#include <cstdio>

#include "duration_option.h"
#include "vantrel/hosts/modbus/modbus_mapping.h"
#include "vantrel/hosts/modbus/modbus_server.h"
#include "vantrel/hosts/program_commands.h"
#include "vantrel/hosts/program_file.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/poll_event_loop.h"

namespace vantrel::cli {
namespace {

std::atomic<PollEventLoop*> stoppedLoop{nullptr};

extern "C" void OnControllerStopSignal(int) {
  if (PollEventLoop* loop = stoppedLoop.load()) loop->RequestQuit();
}

// "HOST:PORT"; false when the text is not one.
bool SplitListenAddress(const std::string& text, std::string& host, int& port) {
  const size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0) return false;
  host = text.substr(0, colon);
  const std::string digits = text.substr(colon + 1);
  if (digits.empty() || digits.size() > 5 ||
      digits.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  port = std::stoi(digits);
  return port <= 65535;
}

// Reads command lines from standard input as they come, without blocking the loop. Besides
// the program's commands, "offline MS" drops every client and stops serving for that long,
// as a controller that leaves the network does, and "quit" stops.
class CommandReader {
 public:
  CommandReader(PollEventLoop& loop, hosts::TraceProgram& program,
                hosts::modbus::ModbusServer& server, std::string host)
      : loop_(loop),
        program_(program),
        server_(server),
        host_(std::move(host)),
        port_(server.Port()),
        backOnline_(loop.CreateTimer()) {
    backOnline_->SetTickHandler([this] { GoOnline(); });
    loop_.WatchFd(STDIN_FILENO, PollEventLoop::kReadable, [this](int, short) { ReadSome(); });
  }
  ~CommandReader() { loop_.UnwatchFd(STDIN_FILENO); }

 private:
  void ReadSome() {
    char chunk[512];
    const ssize_t n = ::read(STDIN_FILENO, chunk, sizeof chunk);
    if (n <= 0) {
      // End of input: the controller keeps running until it is stopped.
      loop_.UnwatchFd(STDIN_FILENO);
      return;
    }
    pending_.append(chunk, static_cast<size_t>(n));
    size_t newline = 0;
    while ((newline = pending_.find('\n')) != std::string::npos) {
      const std::string line = pending_.substr(0, newline);
      pending_.erase(0, newline + 1);
      if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
      if (line == "quit" || line == "quit\r") {
        loop_.Quit();
        return;
      }
      const hosts::CommandReply reply = line.rfind("offline", 0) == 0
                                            ? GoOffline(line.substr(7))
                                            : hosts::RunProgramCommand(program_, line);
      Reply(reply);
    }
  }

  static void Reply(const hosts::CommandReply& reply) {
    std::printf("%s %s\n", reply.ok ? "ok" : "error", reply.text.c_str());
    std::fflush(stdout);
  }

  hosts::CommandReply GoOffline(const std::string& argument) {
    int ms = 0;
    try {
      ms = std::stoi(argument);
    } catch (const std::exception&) {
      ms = 0;
    }
    if (ms < 1 || ms > 3'600'000) return {false, "offline takes milliseconds, 1 to 3600000"};
    server_.Close();
    backOnline_->SetInterval(ms);
    backOnline_->SetEnabled(true);
    return {true, "offline for " + std::to_string(ms) + " ms"};
  }

  void GoOnline() {
    backOnline_->SetEnabled(false);
    // The same port again, so that clients find their controller where it was.
    if (server_.Listen(host_, port_)) {
      Reply({true, "online"});
    } else {
      Reply({false, "cannot listen again: " + server_.LastError()});
      loop_.Quit();
    }
  }

  PollEventLoop& loop_;
  hosts::TraceProgram& program_;
  hosts::modbus::ModbusServer& server_;
  std::string host_;
  int port_;
  std::unique_ptr<Timer> backOnline_;
  std::string pending_;
};

}  // namespace

CLI::App* AddControllerCommand(CLI::App& app, ControllerOptions& o) {
  CLI::App* command = app.add_subcommand(
      "controller",
      "Run the virtual controller as a Modbus TCP server; commands on standard input: burst N, "
      "restart, pause, resume, command N, offline MS, quit");
  command->add_option("--listen", o.listen, "Address and port to serve, HOST:PORT (port 0: any)")
      ->capture_default_str();
  command->add_option("--program", o.programFile, "The trace program (INI file)");
  command
      ->add_option("--record-interval", o.recordIntervalMs,
                   "Milliseconds between records (default: the program's)")
      ->check(CLI::Range(1, 3'600'000));
  command->add_option("--duration", o.durationSeconds, "Stop after this many seconds")
      ->check(DurationSeconds());
  hosts::AddModbusOptions(*command, o.modbus);
  return command;
}

int RunController(const ControllerOptions& o) {
  std::string host;
  int port = 0;
  if (!SplitListenAddress(o.listen, host, port)) {
    std::fprintf(stderr, "vantrel controller: --listen needs HOST:PORT, not '%s'\n",
                 o.listen.c_str());
    return 2;
  }
  hosts::ProgramFile program{hosts::PumpStationProgram(), 100};
  if (o.programFile) {
    std::string error;
    auto file = hosts::ReadProgramFile(*o.programFile, error);
    if (!file) {
      std::fprintf(stderr, "vantrel controller: %s\n", error.c_str());
      return 2;
    }
    program = std::move(*file);
  }
  if (o.recordIntervalMs) program.recordIntervalMs = *o.recordIntervalMs;

  std::string error;
  hosts::modbus::ModbusMapping mapping;
  mapping.registerOffset = o.modbus.registerOffset;
  bool mapped = mapping.SetWordOrder(o.modbus.wordOrder, error);
  for (const std::string& block : o.modbus.dataBlocks)
    mapped = mapped && mapping.AddDataBlock(block, error);
  if (!mapped) {
    std::fprintf(stderr, "vantrel controller: %s\n", error.c_str());
    return 2;
  }

  PollEventLoop loop;
  SystemClock clock;
  hosts::RegisterSpace space;
  hosts::TraceProgram trace(space, program.program, clock);
  trace.Install();
  auto recordTimer = loop.CreateTimer();
  recordTimer->SetInterval(program.recordIntervalMs);
  recordTimer->SetTickHandler([&] { trace.WriteRecords(1); });
  recordTimer->SetEnabled(true);

  hosts::modbus::ModbusServer server(loop, space, mapping);
  if (!server.Listen(host, port)) {
    std::fprintf(stderr, "vantrel controller: cannot listen on %s: %s\n", o.listen.c_str(),
                 server.LastError().c_str());
    return 2;
  }
  // The first line tells clients (and scripts) where to connect.
  std::printf("listening on %s:%d\n", host.c_str(), server.Port());
  std::fflush(stdout);
  CommandReader commands(loop, trace, server, host);

  stoppedLoop = &loop;
  std::signal(SIGINT, OnControllerStopSignal);
  std::signal(SIGTERM, OnControllerStopSignal);
  if (o.durationSeconds > 0) {
    loop.RunFor(std::chrono::milliseconds(static_cast<int64_t>(o.durationSeconds * 1000)));
  } else {
    loop.Run();
  }
  stoppedLoop = nullptr;
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
  server.Close();
  return 0;
}

}  // namespace vantrel::cli
