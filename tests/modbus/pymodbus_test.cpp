// The client against an independent server (pymodbus, run by /usr/bin/python3): the register
// offset, both word orders and the splitting of long requests, seen from the other side of
// the wire. The server says which holding registers each read asked for.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "modbus/test_helpers.h"
#include "vantrel/hosts/modbus/modbus_client.h"

namespace vantrel::hosts::modbus {
namespace {

using test::RunUntil;

constexpr int32_t kFirstServed = 10;
constexpr int kWordsServed = 440;

// What the server holds at `address`: distinct words, many with the top bit set.
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
    // The shell says its process id, then becomes the server; the pipe carries its log.
    std::string command = "echo $$; exec /usr/bin/python3 " VANTREL_SOURCE_DIR
                          "/tests/modbus/pymodbus_server.py " +
                          std::to_string(port_) + " " + std::to_string(kFirstServed);
    for (int i = 0; i < kWordsServed; ++i)
      command += " " + std::to_string(Served(kFirstServed + i));
    server_ = ::popen(command.c_str(), "r");
    ASSERT_NE(server_, nullptr);
    ASSERT_EQ(std::fscanf(server_, "%d", &pid_), 1);
    log_ = ::fileno(server_);
    ::fcntl(log_, F_SETFL, O_NONBLOCK);
  }
  void TearDown() override {
    if (pid_ > 0) ::kill(pid_, SIGKILL);
    if (server_ != nullptr) ::pclose(server_);
  }

  // The answer to one request; the reads the server saw for it in `reads`.
  std::vector<int32_t> Ask(ModbusMapping mapping,
                           const std::function<void(ModbusClient&)>& request) {
    TakeLog();
    std::optional<std::vector<int32_t>> answer;
    ModbusClient::Callbacks callbacks;
    callbacks.answer = [&](std::vector<int32_t> v) { answer = std::move(v); };
    ModbusClient client(
        Endpoint{"127.0.0.1", port_}, 1, std::move(mapping),
        [this](std::function<void()> task) { loop_.Post(std::move(task)); }, callbacks,
        ModbusClient::Timing{500, 20, 200});
    request(client);
    // The server needs a moment to start: the client retries until it answers.
    RunUntil(
        loop_, [&] { return answer.has_value(); }, std::chrono::milliseconds(6000));
    reads.clear();
    std::istringstream lines(TakeLog());
    std::string word;
    HoldingRead read;
    while (lines >> word >> read.address >> read.words)
      reads.push_back(read);
    return answer.value_or(std::vector<int32_t>{});
  }

  std::vector<HoldingRead> reads;

 private:
  std::string TakeLog() {
    std::string text;
    char chunk[4096];
    ssize_t n;
    while ((n = ::read(log_, chunk, sizeof chunk)) > 0)
      text.append(chunk, static_cast<size_t>(n));
    return text;
  }

  PollEventLoop loop_;
  int port_ = 0;
  FILE* server_ = nullptr;
  pid_t pid_ = -1;
  int log_ = -1;
};

TEST_F(IndependentServer, OffsetWordOrdersDataBlocksAndSplitReads) {
  ModbusMapping mapping;
  mapping.registerOffset = kFirstServed;
  // 200 registers are 400 holding registers: reads of at most 124, pairs kept whole.
  const auto values = Ask(mapping, [](ModbusClient& c) { c.ReadRegisters(0, 200); });
  ASSERT_EQ(values.size(), 200u);
  for (int32_t n = 0; n < 200; ++n) {
    const int32_t address = kFirstServed + 2 * n;
    ASSERT_EQ(values[static_cast<size_t>(n)], Pair(Served(address), Served(address + 1))) << n;
  }
  ASSERT_EQ(reads.size(), 4u);
  test::ExpectWholeCover(reads, kFirstServed, 200);

  std::string error;
  ASSERT_TRUE(mapping.SetWordOrder("lo-hi", error));
  mapping.registerOffset = 12;
  EXPECT_EQ(Ask(mapping, [](ModbusClient& c) { c.ReadRegisters(3, 2); }),
            (std::vector<int32_t>{Pair(Served(19), Served(18)), Pair(Served(21), Served(20))}));
  ASSERT_EQ(reads.size(), 1u);
  EXPECT_EQ(reads[0].address, 18);
  EXPECT_EQ(reads[0].words, 4);
}

}  // namespace
}  // namespace vantrel::hosts::modbus
