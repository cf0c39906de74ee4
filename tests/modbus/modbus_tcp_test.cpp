// Modbus TCP: how the server frames requests and builds replies, byte by byte without
// sockets; the server on a real event loop, talked to through plain sockets (requests that
// come in pieces or several at once, a client that sends garbage, a port taken twice, Close);
// the client against our server on a free loopback port (only the newest request answered,
// retries that back off, timeouts and exception responses retried over fresh connections and
// never answered with invented values, a prompt stop) and against an independent server. (The
// trace buffer read through a controller that goes away and comes back is in the two-process
// test, tests/apps.)

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "server_requests.h"
#include "vantrel/hosts/modbus/modbus_client.h"
#include "vantrel/hosts/modbus/modbus_server.h"
#include "vantrel/poll_event_loop.h"

namespace vantrel::hosts::modbus {
namespace {

using Bytes = std::vector<uint8_t>;
using std::chrono::milliseconds;

// Runs the loop until `done` holds, at most `limit`.
template <typename Done>
bool RunUntil(PollEventLoop& loop, Done done,
              std::chrono::milliseconds limit = std::chrono::milliseconds(5000)) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!done() && std::chrono::steady_clock::now() < deadline)
    loop.RunFor(std::chrono::milliseconds(5));
  return done();
}

// A read of holding registers (or another function) as it goes over the wire.
Bytes ReadRequest(uint16_t transaction, uint16_t address, uint16_t count, uint8_t unit = 1,
                  uint8_t function = 3) {
  const auto hi = [](unsigned v) { return static_cast<uint8_t>(v >> 8); };
  const auto lo = [](unsigned v) { return static_cast<uint8_t>(v & 0xFF); };
  return {hi(transaction), lo(transaction), 0,           0,         0,        6, unit,
          function,        hi(address),     lo(address), hi(count), lo(count)};
}

// A socket bound to a free loopback port; `port` is set to it.
int BoundSocket(int flags, int& port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
  const int on = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  port = ntohs(address.sin_port);
  return fd;
}

// A client that sends raw bytes.
class RawClient {
 public:
  explicit RawClient(int port) : fd_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }
  ~RawClient() { ::close(fd_); }
  void Send(const Bytes& bytes) { ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  // Takes what has arrived without waiting; false once the server has hung up.
  bool Poll() {
    uint8_t chunk[1024];
    ssize_t n;
    while ((n = ::recv(fd_, chunk, sizeof chunk, MSG_DONTWAIT)) > 0)
      received.insert(received.end(), chunk, chunk + n);
    hungUp = hungUp || n == 0;
    return !hungUp;
  }

  Bytes received;
  bool hungUp = false;

 private:
  int fd_;
};

// A listener on a free loopback port, watched by the loop: it takes every connection and
// then either keeps it open without a word or closes it at once.
class SilentListener {
 public:
  SilentListener(PollEventLoop& loop, bool hangUp) : loop_(loop) {
    fd_ = BoundSocket(SOCK_NONBLOCK, port_);
    ::listen(fd_, 8);
    loop_.WatchFd(fd_, PollEventLoop::kReadable, [this, hangUp](int, short) {
      const int client = ::accept(fd_, nullptr, nullptr);
      if (client < 0) return;
      ++accepted;
      if (hangUp) ::close(client);
      if (!hangUp) taken_.push_back(client);
    });
  }
  ~SilentListener() {
    loop_.UnwatchFd(fd_);
    ::close(fd_);
    for (const int client : taken_)
      ::close(client);
  }
  int Port() const { return port_; }

  int accepted = 0;

 private:
  PollEventLoop& loop_;
  int fd_ = -1;
  int port_ = 0;
  std::vector<int> taken_;
};

TEST(ServerRequests, RequestsAreTakenWholeUpToTheLongestFrame) {
  Bytes request = ReadRequest(0x0102, 0, 2);
  EXPECT_EQ(FirstRequestSize(std::span(request).first(11)), 0u);
  request.resize(20);
  EXPECT_EQ(FirstRequestSize(request), 12u);
  request[5] = 254;  // 260 bytes, the longest frame, not all here yet
  EXPECT_EQ(FirstRequestSize(request), 0u);
  request[5] = 255;
  EXPECT_EQ(FirstRequestSize(request), std::nullopt);
}

// Registers 5 and 6 at holding registers 20 to 23, word 1 of data block 7 at 40002 and 40003.
class Server : public ::testing::Test {
 protected:
  Server() {
    space.SetRegister(5, 0x12345678);
    space.SetRegister(6, -2);
    space.SetDataBlockWord(7, 1, 0x00010002);
    mapping.registerOffset = 10;
    mapping.dataBlocks[7] = 40000;
  }
  // The reply to a request, appended after what already waits to be sent.
  Bytes Reply(const Bytes& request) {
    Bytes out = {0xEE};
    AppendReply(request, space, mapping, out);
    EXPECT_EQ(out.front(), 0xEE);
    return Bytes(out.begin() + 1, out.end());
  }
  static Bytes Answer(uint8_t transaction, const Bytes& words, uint8_t unit = 1) {
    const auto n = static_cast<uint8_t>(words.size());
    Bytes reply = {0, transaction, 0, 0, 0, static_cast<uint8_t>(3 + n), unit, 3, n};
    for (const uint8_t byte : words)
      reply.push_back(byte);
    return reply;
  }
  static Bytes Exception(uint8_t function, uint8_t code) {
    return {0, 9, 0, 0, 0, 3, 2, static_cast<uint8_t>(function | 0x80), code};
  }

  RegisterSpace space;
  ModbusMapping mapping;
  PollEventLoop loop;
};

TEST_F(Server, HoldingRegistersAreTheRegisterSpaceInTheMappedWordOrder) {
  EXPECT_EQ(Reply(ReadRequest(0xBE, 20, 4, 17)),
            Answer(0xBE, {0x12, 0x34, 0x56, 0x78, 0xFF, 0xFF, 0xFF, 0xFE}, 17));
  EXPECT_EQ(Reply(ReadRequest(1, 21, 2)), Answer(1, {0x56, 0x78, 0xFF, 0xFF}));
  EXPECT_EQ(Reply(ReadRequest(2, 40002, 2)), Answer(2, {0, 1, 0, 2}));
  mapping.wordOrder = WordOrder::LowHigh;
  EXPECT_EQ(Reply(ReadRequest(3, 20, 4)),
            Answer(3, {0x56, 0x78, 0x12, 0x34, 0xFF, 0xFE, 0xFF, 0xFF}));
  // Each reply is what the space holds at that moment.
  space.SetRegister(5, 7);
  EXPECT_EQ(Reply(ReadRequest(4, 20, 2)), Answer(4, {0, 7, 0, 0}));
  EXPECT_EQ(Reply(ReadRequest(5, 100, 125)).size(), 9u + 250u);  // the largest read
}

TEST_F(Server, WhatCannotBeServedGetsAnExceptionResponse) {
  EXPECT_EQ(Reply(ReadRequest(9, 20, 1, 2, 6)), Exception(6, kIllegalFunction));
  EXPECT_EQ(Reply(ReadRequest(9, 20, 0, 2)), Exception(3, kIllegalDataValue));
  EXPECT_EQ(Reply(ReadRequest(9, 20, 126, 2)), Exception(3, kIllegalDataValue));
  EXPECT_EQ(Reply(ReadRequest(9, 65500, 100, 2)), Exception(3, kIllegalDataAddress));
  // Below the register offset nothing is mapped, also when only the first word lies there.
  EXPECT_EQ(Reply(ReadRequest(9, 9, 4, 2)), Exception(3, kIllegalDataAddress));
  Bytes shortRead = ReadRequest(9, 20, 1, 2);
  shortRead.resize(10);
  shortRead[5] = 4;
  EXPECT_EQ(Reply(shortRead), Exception(3, kIllegalDataValue));
}

TEST_F(Server, EachClientIsServedOnItsOwnAndDroppedOnGarbageOrClose) {
  ModbusServer server(loop, space, mapping);
  ASSERT_TRUE(server.Listen("127.0.0.1", 0)) << server.LastError();
  const auto receive = [&](RawClient& client, size_t bytes) {
    return RunUntil(loop, [&] { return !client.Poll() || client.received.size() >= bytes; });
  };
  RawClient slow(server.Port());
  RawClient quick(server.Port());
  RawClient bad(server.Port());
  const Bytes first = ReadRequest(1, 20, 2);
  slow.Send(Bytes(first.begin(), first.begin() + 5));
  ASSERT_TRUE(RunUntil(loop, [&] { return server.ClientCount() == 3; }));
  // Half a request waits without blocking the loop; a client sending garbage is dropped.
  Bytes garbage = ReadRequest(7, 20, 2);
  garbage[3] = 7;  // not the Modbus protocol id
  bad.Send(garbage);
  quick.Send(ReadRequest(2, 22, 2));
  ASSERT_TRUE(receive(quick, 13));
  EXPECT_EQ(quick.received, Answer(2, {0xFF, 0xFF, 0xFF, 0xFE}));
  ASSERT_TRUE(RunUntil(loop, [&] { return !bad.Poll(); }));
  EXPECT_TRUE(bad.received.empty());
  EXPECT_TRUE(slow.Poll() && slow.received.empty());
  // The rest of the first request and a whole second one in a single send.
  Bytes rest(first.begin() + 5, first.end());
  const Bytes second = ReadRequest(3, 22, 2);
  rest.insert(rest.end(), second.begin(), second.end());
  slow.Send(rest);
  ASSERT_TRUE(receive(slow, 26));
  Bytes both = Answer(1, {0x12, 0x34, 0x56, 0x78});
  const Bytes then = Answer(3, {0xFF, 0xFF, 0xFF, 0xFE});
  both.insert(both.end(), then.begin(), then.end());
  EXPECT_EQ(slow.received, both);
  EXPECT_EQ(server.ClientCount(), 2);
  // The port is taken; Close drops every client.
  ModbusServer rival(loop, space, mapping);
  EXPECT_FALSE(rival.Listen("127.0.0.1", server.Port()));
  EXPECT_NE(rival.LastError().find("Address already in use"), std::string::npos);
  server.Close();
  ASSERT_TRUE(RunUntil(loop, [&] { return !slow.Poll() && !quick.Poll(); }));
  EXPECT_EQ(server.ClientCount(), 0);
}

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
  // A read of some 320 round trips is under way when a newer request comes: it is not
  // answered.
  client->ReadRegisters(0, 19990);
  ASSERT_TRUE(RunUntil(loop, [&] { return server->ClientCount() == 1; }));
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
  // An impatient host asks again every millisecond for that long read: each ask must not
  // start the read over, or it would never be answered.
  for (int turn = 0; turn < 5000 && answers.size() < 2; ++turn) {
    client->ReadRegisters(0, 19990);
    loop.RunFor(milliseconds(1));
  }
  ASSERT_EQ(answers.size(), 2u) << "the read was started over at each ask";
  EXPECT_EQ(answers[1], space.ReadRegisters(0, 19990));
  loop.RunFor(milliseconds(150));
  EXPECT_EQ(answers.size(), 2u) << "one answer for the asks of one read";
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

// What the independent server (tests/modbus/pymodbus_server.py) holds at `address`: distinct
// words from holding register 10 to 449, many with the top bit set.
uint16_t Served(int32_t address) {
  return static_cast<uint16_t>((address * 40503 + 12345) & 0xFFFF);
}

// The register offset, both word orders and a request split into several reads, against a
// server that is not ours (pymodbus, run by /usr/bin/python3).
TEST_F(ClientTest, AnIndependentServerGivesTheSameRegisters) {
  if (std::system("/usr/bin/python3 -c 'import pymodbus.server' >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "/usr/bin/python3 cannot import pymodbus";
  }
  int port = 0;
  ::close(BoundSocket(0, port));  // a free port for the server to take
  // The server runs until the pipe to its standard input is closed.
  const std::unique_ptr<FILE, int (*)(FILE*)> python(
      ::popen(("exec /usr/bin/python3 " VANTREL_SOURCE_DIR "/tests/modbus/pymodbus_server.py " +
               std::to_string(port) + " 10 440")
                  .c_str(),
              "w"),
      ::pclose);
  ASSERT_TRUE(python);
  const auto pair = [](int32_t address, int32_t other) {
    return static_cast<int32_t>((uint32_t{Served(address)} << 16) | Served(other));
  };
  // 200 registers are 400 holding registers: more than one read carries. The server needs a
  // moment to start: the client retries until it answers.
  auto client = Client(port);
  client->ReadRegisters(0, 200);
  ASSERT_TRUE(RunUntil(
      loop, [&] { return answers.size() == 1; }, milliseconds(6000)));
  ASSERT_EQ(answers[0].size(), 200u);
  for (int32_t n = 0; n < 200; ++n)
    ASSERT_EQ(answers[0][static_cast<size_t>(n)], pair(10 + 2 * n, 11 + 2 * n)) << n;
  ModbusMapping lowHigh = Mapping(12);
  lowHigh.wordOrder = WordOrder::LowHigh;
  client = Client(port, lowHigh);
  client->ReadRegisters(3, 2);
  ASSERT_TRUE(Answers(2));
  EXPECT_EQ(answers[1], (std::vector<int32_t>{pair(19, 18), pair(21, 20)}));
}

}  // namespace
}  // namespace vantrel::hosts::modbus
