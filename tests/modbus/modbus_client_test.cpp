// The client against our server on a free loopback port, through a real event loop: only the
// newest request answered, retries that back off, timeouts and exception responses retried
// over fresh connections and never answered with invented values, a prompt stop. (The trace buffer
// read through a controller that goes away and comes back is in the two-process test, tests/apps.)

#include "vantrel/hosts/modbus/modbus_client.h"

#include <gtest/gtest.h>

#include <chrono>

#include "modbus/test_helpers.h"
#include "vantrel/hosts/modbus/modbus_server.h"

namespace vantrel::hosts::modbus {
namespace {

using std::chrono::milliseconds;
using test::RunUntil;
using test::SilentListener;

class ClientTest : public ::testing::Test {
 protected:
  // Registers of distinct values, many negative; two words of data block 7.
  ClientTest() {
    for (int32_t r = 0; r < 3000; ++r)
      space.SetRegister(r, r * 7919 - 5000);
    space.SetDataBlockWord(7, 0, 111);
    space.SetDataBlockWord(7, 1, -222);
  }

  static ModbusMapping Mapping(int32_t registerOffset = 10) {
    ModbusMapping m;
    m.registerOffset = registerOffset;
    m.dataBlocks[7] = 40000;
    return m;
  }
  void Serve(int port = 0, ModbusMapping mapping = Mapping()) {
    server = std::make_unique<ModbusServer>(loop, space, std::move(mapping));
    ASSERT_TRUE(server->Listen("127.0.0.1", port)) << server->LastError();
  }
  std::unique_ptr<ModbusClient> Client(int port, ModbusMapping mapping = Mapping(),
                                       int responseTimeoutMs = 300) {
    ModbusClient::Callbacks callbacks;
    callbacks.answer = [this](std::vector<int32_t> v) { answers.push_back(std::move(v)); };
    callbacks.connection = [this](bool up) { connection.push_back(up); };
    callbacks.error = [this](std::string e) { errors.push_back(std::move(e)); };
    return std::make_unique<ModbusClient>(
        Endpoint{"127.0.0.1", port}, 1, std::move(mapping),
        [this](std::function<void()> task) { loop.Post(std::move(task)); }, callbacks,
        ModbusClient::Timing{responseTimeoutMs, 20, 160});
  }
  bool Answers(size_t count) {
    return RunUntil(loop, [&] { return answers.size() >= count; });
  }

  RegisterSpace space;
  PollEventLoop loop;
  std::unique_ptr<ModbusServer> server;
  std::vector<std::vector<int32_t>> answers;
  std::vector<bool> connection;
  std::vector<std::string> errors;
};

TEST_F(ClientTest, OnlyTheNewestRequestIsAnswered) {
  Serve();
  auto client = Client(server->Port());
  client->ReadRegisters(1004, 2);
  client->ReadDataBlock(7, 0, 2);
  ASSERT_TRUE(Answers(1));
  EXPECT_EQ(answers[0], (std::vector<int32_t>{111, -222}));
  // A request that cannot be served is an error, and the one before it is not answered.
  client->ReadRegisters(1004, 2);
  client->ReadDataBlock(8, 0, 4);
  ASSERT_TRUE(RunUntil(loop, [&] { return !errors.empty(); }));
  EXPECT_EQ(errors, std::vector<std::string>{
                        "data block 8 has no holding register address (map it with --db-map "
                        "8=ADDRESS)"});
  // An impatient host asks again every millisecond for a read of 34 round trips: each ask
  // must not start the read over, or it would never be answered.
  for (int turn = 0; turn < 5000 && answers.size() < 2; ++turn) {
    client->ReadRegisters(1000, 2000);
    loop.RunFor(milliseconds(1));
  }
  loop.RunFor(milliseconds(150));
  ASSERT_EQ(answers.size(), 2u) << "one answer for the asks of one read";
  EXPECT_EQ(answers[1], space.ReadRegisters(1000, 2000));
}

TEST_F(ClientTest, RetriesBackOff) {
  // A controller that hangs up on every connection: each retry is one connection. Without
  // the back-off (20 ms doubling to 160 ms) a second would see about fifty.
  SilentListener hangingUp(loop, true);
  auto client = Client(hangingUp.Port());
  client->ReadRegisters(0, 1);
  loop.RunFor(milliseconds(1000));
  EXPECT_GE(hangingUp.accepted, 4);
  EXPECT_LE(hangingUp.accepted, 15);
  EXPECT_EQ(connection, std::vector<bool>{false});
  EXPECT_TRUE(answers.empty());
}

TEST_F(ClientTest, ATimeoutIsRetriedOverAFreshConnectionAndStoppingCutsAReadShort) {
  SilentListener silent(loop, false);
  auto client = Client(silent.Port(), Mapping(), 1000);
  client->ReadRegisters(0, 1);
  // A second connection: the first is not used again after its read timed out.
  ASSERT_TRUE(RunUntil(loop, [&] { return silent.accepted >= 2; }));
  loop.RunFor(milliseconds(50));  // the retry is waiting for its answer
  const auto before = std::chrono::steady_clock::now();
  client.reset();
  // Not a speed target: a stop that waited for the response timeout would be a hang.
  EXPECT_LT(std::chrono::steady_clock::now() - before, milliseconds(500));
  loop.RunFor(milliseconds(100));
  EXPECT_EQ(connection, std::vector<bool>{false});
  EXPECT_TRUE(answers.empty());
}

TEST_F(ClientTest, AnExceptionResponseIsReportedOnceAndNeverAnswered) {
  // The server maps register 0 to holding register 10; the client asks for 0 and 1.
  Serve();
  const int port = server->Port();
  auto client = Client(port, Mapping(0));
  client->ReadRegisters(0, 1);
  ASSERT_TRUE(RunUntil(loop, [&] { return !errors.empty(); }));
  loop.RunFor(milliseconds(300));  // several retries
  EXPECT_EQ(errors, std::vector<std::string>{
                        "the controller refused to read holding registers 0 to 1: Illegal data "
                        "address"});
  EXPECT_EQ(connection, std::vector<bool>{false});
  EXPECT_TRUE(answers.empty());
  // A controller that has the registers answers the same request.
  server.reset();
  Serve(port, Mapping(0));
  ASSERT_TRUE(Answers(1));
  EXPECT_EQ(answers[0], std::vector<int32_t>{space.Register(0)});
  EXPECT_EQ(connection, (std::vector<bool>{false, true}));
}

}  // namespace
}  // namespace vantrel::hosts::modbus
