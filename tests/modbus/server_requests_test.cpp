// How the server frames requests and builds replies, byte by byte, without sockets.

#include "server_requests.h"

#include <gtest/gtest.h>

#include "modbus/test_helpers.h"

namespace vantrel::hosts::modbus {
namespace {

using test::Bytes;
using test::ReadRequest;

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

class Replies : public ::testing::Test {
 protected:
  Replies() {
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
};

TEST_F(Replies, HoldingRegistersAreTheRegisterSpaceInTheMappedWordOrder) {
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

TEST_F(Replies, WhatCannotBeServedGetsAnExceptionResponse) {
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

}  // namespace
}  // namespace vantrel::hosts::modbus
