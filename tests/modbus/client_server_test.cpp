// The client against our server on a loopback port, and against an independent server
// (pymodbus), through a real event loop: values match the register space, a lost server is
// reported and the request answered once it is back, replaced requests are not answered.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "vantrel/hosts/modbus/modbus_client.h"
#include "vantrel/hosts/modbus/modbus_server.h"
#include "vantrel/hosts/pump_station.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/manual_clock.h"
#include "vantrel/poll_event_loop.h"

namespace vantrel::hosts::modbus {
namespace {

using std::chrono::milliseconds;

// What the client handed to its host, in order.
struct Heard {
  std::vector<std::vector<int32_t>> answers;
  std::vector<bool> connection;
  std::vector<std::string> errors;
};

class Loopback : public ::testing::Test {
 protected:
  Loopback() : program(space, PumpStationProgram(), clock), server(loop, space, Mapping()) {
    program.Install();
    program.WriteRecords(73);  // the ring of 50 has gone round
    space.SetDataBlockWord(7, 0, 111);
    space.SetDataBlockWord(7, 1, -222);
    EXPECT_TRUE(server.Listen("127.0.0.1", 0)) << server.LastError();
  }

  static ModbusMapping Mapping() {
    ModbusMapping m;
    m.registerOffset = 10;
    std::string error;
    EXPECT_TRUE(m.AddDataBlock("7=40000", error));
    return m;
  }

  std::unique_ptr<ModbusClient> Client() {
    ModbusClient::Callbacks callbacks;
    callbacks.answer = [this](std::vector<int32_t> v) { heard.answers.push_back(std::move(v)); };
    callbacks.connection = [this](bool up) { heard.connection.push_back(up); };
    callbacks.error = [this](std::string e) { heard.errors.push_back(std::move(e)); };
    ModbusClient::Timing timing;
    timing.responseTimeoutMs = 300;
    timing.firstRetryMs = 20;
    timing.longestRetryMs = 200;
    return std::make_unique<ModbusClient>(
        Endpoint{"127.0.0.1", server.Port()}, 1, Mapping(),
        [this](std::function<void()> task) { loop.Post(std::move(task)); }, callbacks, timing);
  }

  // Runs the loop until `done` holds, at most ten seconds.
  template <typename Done>
  bool RunUntil(Done done) {
    for (int slice = 0; slice < 1000 && !done(); ++slice)
      loop.RunFor(milliseconds(10));
    return done();
  }

  ManualClock clock;
  RegisterSpace space;
  TraceProgram program;
  PollEventLoop loop;
  ModbusServer server;
  Heard heard;
};

TEST_F(Loopback, RegistersAndDataBlocksReadAsTheControllerHoldsThem) {
  auto client = Client();
  // The whole buffer: header and ring, 316 registers, more than one read can carry.
  const int32_t count = 16 + 50 * 6;
  client->ReadRegisters(1000, count);
  ASSERT_TRUE(RunUntil([&] { return heard.answers.size() == 1; }));
  EXPECT_EQ(heard.answers[0], space.ReadRegisters(1000, count));
  EXPECT_EQ(heard.connection, std::vector<bool>{true});

  // Values change between requests: each answer is what the space holds at that moment.
  program.WriteRecords(3);
  client->ReadRegisters(1004, 2);
  client->ReadDataBlock(7, 0, 2);
  ASSERT_TRUE(RunUntil([&] { return heard.answers.size() == 2; }));
  // The register request was replaced before it was served, or its answer dropped.
  EXPECT_EQ(heard.answers[1], (std::vector<int32_t>{111, -222}));
  loop.RunFor(milliseconds(100));
  EXPECT_EQ(heard.answers.size(), 2u);
  client->ReadRegisters(1004, 2);
  ASSERT_TRUE(RunUntil([&] { return heard.answers.size() == 3; }));
  EXPECT_EQ(heard.answers[2], (std::vector<int32_t>{76, 76 % 50}));
  EXPECT_TRUE(heard.errors.empty());
}

TEST_F(Loopback, AnUnmappedDataBlockIsAnErrorNotAnAnswer) {
  auto client = Client();
  client->ReadDataBlock(8, 0, 4);
  ASSERT_TRUE(RunUntil([&] { return !heard.errors.empty(); }));
  EXPECT_EQ(heard.errors[0],
            "data block 8 has no holding register address (map it with --db-map 8=ADDRESS)");
  loop.RunFor(milliseconds(100));
  EXPECT_TRUE(heard.answers.empty());
}

TEST_F(Loopback, ALostServerIsReportedAndTheRequestAnsweredWhenItIsBack) {
  auto client = Client();
  client->ReadRegisters(1004, 1);
  ASSERT_TRUE(RunUntil([&] { return heard.answers.size() == 1; }));
  const int port = server.Port();
  server.Close();
  program.WriteRecords(5);
  client->ReadRegisters(1004, 1);
  ASSERT_TRUE(RunUntil([&] { return heard.connection.size() == 2; }));
  EXPECT_EQ(heard.connection, (std::vector<bool>{true, false}));
  // Retries go on meanwhile; none is answered with anything.
  loop.RunFor(milliseconds(300));
  EXPECT_EQ(heard.answers.size(), 1u);
  ASSERT_TRUE(server.Listen("127.0.0.1", port)) << server.LastError();
  ASSERT_TRUE(RunUntil([&] { return heard.answers.size() == 2; }));
  EXPECT_EQ(heard.answers[1], std::vector<int32_t>{78});
  EXPECT_EQ(heard.connection, (std::vector<bool>{true, false, true}));
}

TEST_F(Loopback, SeveralClientsAreServedAndADroppedOneLeavesTheOthers) {
  auto first = Client();
  auto second = Client();
  first->ReadRegisters(1004, 1);
  second->ReadRegisters(1005, 1);
  ASSERT_TRUE(RunUntil([&] { return heard.answers.size() == 2; }));
  EXPECT_EQ(server.ClientCount(), 2);
  first.reset();
  ASSERT_TRUE(RunUntil([&] { return server.ClientCount() == 1; }));
  second->ReadRegisters(1004, 1);
  ASSERT_TRUE(RunUntil([&] { return heard.answers.size() == 3; }));
  EXPECT_EQ(heard.answers[2], std::vector<int32_t>{73});
}

// An independent server proves the mapping: pymodbus holds holding registers from 10 on,
// word i holding 1000 + i.
class IndependentServer : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::system("/usr/bin/python3 -c 'import pymodbus.server' 2>/dev/null") != 0) {
      GTEST_SKIP() << "pymodbus is not installed";
    }
    port = 20000 + static_cast<int>(::getpid() % 20000);
    pid = ::fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      std::vector<std::string> args = {"/usr/bin/python3",
                                       VANTREL_SOURCE_DIR "/tests/modbus/pymodbus_server.py",
                                       std::to_string(port), "10"};
      for (int i = 0; i < 420; ++i)
        args.push_back(std::to_string(1000 + i));
      std::vector<char*> argv;
      for (std::string& a : args)
        argv.push_back(a.data());
      argv.push_back(nullptr);
      ::execv(argv[0], argv.data());
      ::_exit(127);
    }
  }
  void TearDown() override {
    if (pid > 0) {
      ::kill(pid, SIGKILL);
      ::waitpid(pid, nullptr, 0);
    }
  }

  std::vector<int32_t> Read(ModbusMapping mapping, int32_t first, int32_t count) {
    std::optional<std::vector<int32_t>> answer;
    ModbusClient::Callbacks callbacks;
    callbacks.answer = [&](std::vector<int32_t> v) { answer = std::move(v); };
    ModbusClient client(
        Endpoint{"127.0.0.1", port}, 1, std::move(mapping),
        [this](std::function<void()> task) { loop.Post(std::move(task)); }, callbacks);
    client.ReadRegisters(first, count);
    // The server needs a moment to start: the client retries until it answers.
    for (int slice = 0; slice < 1500 && !answer; ++slice)
      loop.RunFor(milliseconds(10));
    return answer.value_or(std::vector<int32_t>{});
  }

  static int32_t Pair(int high, int low) { return (high << 16) | low; }

  PollEventLoop loop;
  int port = 0;
  pid_t pid = -1;
};

TEST_F(IndependentServer, OffsetWordOrderAndSplitReads) {
  ModbusMapping mapping;
  mapping.registerOffset = 10;
  // 200 registers: 400 holding registers in four reads.
  const std::vector<int32_t> values = Read(mapping, 0, 200);
  ASSERT_EQ(values.size(), 200u);
  for (int n = 0; n < 200; ++n)
    ASSERT_EQ(values[static_cast<size_t>(n)], Pair(1000 + 2 * n, 1001 + 2 * n)) << n;

  std::string error;
  ASSERT_TRUE(mapping.SetWordOrder("lo-hi", error));
  mapping.registerOffset = 12;
  EXPECT_EQ(Read(mapping, 3, 2), (std::vector<int32_t>{Pair(1009, 1008), Pair(1011, 1010)}));
}

}  // namespace
}  // namespace vantrel::hosts::modbus
