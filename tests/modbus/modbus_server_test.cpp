// The server: how it frames requests and builds replies, byte by byte without sockets; then
// on a real event loop, talked to through plain sockets: requests that come in pieces or
// several at once, a client that sends garbage, a port taken twice, Close.

#include "vantrel/hosts/modbus/modbus_server.h"

#include <gtest/gtest.h>

#include "modbus/test_helpers.h"
#include "server_requests.h"

namespace vantrel::hosts::modbus {
namespace {

using test::Bytes;
using test::RawClient;
using test::ReadRequest;
using test::RunUntil;

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
  static Bytes Answer(uint8_t transaction, Bytes words, uint8_t unit = 1) {
    Bytes reply = {0,    transaction, 0,
                   0,    0,           static_cast<uint8_t>(3 + words.size()),
                   unit, 3,           static_cast<uint8_t>(words.size())};
    reply.insert(reply.end(), words.begin(), words.end());
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

}  // namespace
}  // namespace vantrel::hosts::modbus
