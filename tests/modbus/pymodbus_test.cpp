// The client against an independent server (pymodbus, run by /usr/bin/python3): the register
// offset, both word orders and long requests split into several reads, seen from the other
// side of the wire.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "modbus/test_helpers.h"
#include "vantrel/hosts/modbus/modbus_client.h"

namespace vantrel::hosts::modbus {
namespace {

constexpr int32_t kFirstServed = 10;
constexpr int kWordsServed = 440;

// What the server holds at `address` (pymodbus_server.py computes the same): distinct words,
// many with the top bit set.
uint16_t Served(int32_t address) {
  return static_cast<uint16_t>((address * 40503 + 12345) & 0xFFFF);
}

int32_t Pair(uint16_t high, uint16_t low) {
  return static_cast<int32_t>((uint32_t{high} << 16) | low);
}

class IndependentServer : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::system("/usr/bin/python3 -c 'import pymodbus.server' >/dev/null 2>&1") != 0) {
      GTEST_SKIP() << "/usr/bin/python3 cannot import pymodbus";
    }
    ::close(test::BoundSocket(0, port_));  // a free port for the server to take
    // The server runs until the pipe to its standard input is closed.
    server_ =
        ::popen(("exec /usr/bin/python3 " VANTREL_SOURCE_DIR "/tests/modbus/pymodbus_server.py " +
                 std::to_string(port_) + " " + std::to_string(kFirstServed) + " " +
                 std::to_string(kWordsServed))
                    .c_str(),
                "w");
    ASSERT_NE(server_, nullptr);
  }
  void TearDown() override {
    if (server_ != nullptr) ::pclose(server_);
  }

  // The answer to one request.
  std::vector<int32_t> Ask(ModbusMapping mapping,
                           const std::function<void(ModbusClient&)>& request) {
    std::optional<std::vector<int32_t>> answer;
    ModbusClient::Callbacks callbacks;
    callbacks.answer = [&](std::vector<int32_t> v) { answer = std::move(v); };
    ModbusClient client(
        Endpoint{"127.0.0.1", port_}, 1, std::move(mapping),
        [this](std::function<void()> task) { loop_.Post(std::move(task)); }, callbacks,
        ModbusClient::Timing{500, 20, 200});
    request(client);
    // The server needs a moment to start: the client retries until it answers.
    test::RunUntil(
        loop_, [&] { return answer.has_value(); }, std::chrono::milliseconds(6000));
    return answer.value_or(std::vector<int32_t>{});
  }

 private:
  PollEventLoop loop_;
  int port_ = 0;
  FILE* server_ = nullptr;
};

TEST_F(IndependentServer, OffsetWordOrdersAndSplitReads) {
  ModbusMapping mapping;
  mapping.registerOffset = kFirstServed;
  // 200 registers are 400 holding registers: more than one read carries.
  const auto values = Ask(mapping, [](ModbusClient& c) { c.ReadRegisters(0, 200); });
  ASSERT_EQ(values.size(), 200u);
  for (int32_t n = 0; n < 200; ++n) {
    const int32_t address = kFirstServed + 2 * n;
    ASSERT_EQ(values[static_cast<size_t>(n)], Pair(Served(address), Served(address + 1))) << n;
  }
  std::string error;
  ASSERT_TRUE(mapping.SetWordOrder("lo-hi", error));
  mapping.registerOffset = 12;
  EXPECT_EQ(Ask(mapping, [](ModbusClient& c) { c.ReadRegisters(3, 2); }),
            (std::vector<int32_t>{Pair(Served(19), Served(18)), Pair(Served(21), Served(20))}));
}

}  // namespace
}  // namespace vantrel::hosts::modbus
