// The server on a real event loop, talked to through plain sockets: requests that come in
// pieces or several at once, a client that sends garbage, a port taken twice, Close.

#include "vantrel/hosts/modbus/modbus_server.h"

#include <gtest/gtest.h>

#include "modbus/test_helpers.h"

namespace vantrel::hosts::modbus {
namespace {

using test::Bytes;
using test::RawClient;
using test::ReadRequest;
using test::RunUntil;

class Served : public ::testing::Test {
 protected:
  Served() : server(loop, space, ModbusMapping{}) {
    space.SetRegister(0, 0x01020304);
    space.SetRegister(1, -1);
    EXPECT_TRUE(server.Listen("127.0.0.1", 0)) << server.LastError();
  }
  // The reply to ReadRequest(transaction, 0, 2), or to (transaction, 2, 2).
  static Bytes Reply(uint8_t transaction, bool secondRegister) {
    Bytes reply = {0, transaction, 0, 0, 0, 7, 1, 3, 4, 1, 2, 3, 4};
    if (secondRegister) std::fill(reply.begin() + 9, reply.end(), 0xFF);
    return reply;
  }
  bool Receive(RawClient& client, size_t bytes) {
    return RunUntil(loop, [&] { return !client.Poll() || client.received.size() >= bytes; });
  }

  RegisterSpace space;
  PollEventLoop loop;
  ModbusServer server;
};

TEST_F(Served, EachClientIsServedOnItsOwnAndDroppedOnGarbageOrClose) {
  RawClient slow(server.Port());
  RawClient quick(server.Port());
  RawClient bad(server.Port());
  const Bytes first = ReadRequest(1, 0, 2);
  slow.Send(Bytes(first.begin(), first.begin() + 5));
  ASSERT_TRUE(RunUntil(loop, [&] { return server.ClientCount() == 3; }));
  // Half a request waits without blocking the loop; a client sending garbage is dropped.
  Bytes garbage = ReadRequest(7, 0, 2);
  garbage[3] = 7;  // not the Modbus protocol id
  bad.Send(garbage);
  quick.Send(ReadRequest(2, 2, 2));
  ASSERT_TRUE(Receive(quick, 13));
  EXPECT_EQ(quick.received, Reply(2, true));
  ASSERT_TRUE(RunUntil(loop, [&] { return !bad.Poll(); }));
  EXPECT_TRUE(bad.received.empty());
  EXPECT_TRUE(slow.Poll() && slow.received.empty());

  // The rest of the first request and a whole second one in a single send.
  Bytes rest(first.begin() + 5, first.end());
  const Bytes second = ReadRequest(3, 2, 2);
  rest.insert(rest.end(), second.begin(), second.end());
  slow.Send(rest);
  ASSERT_TRUE(Receive(slow, 26));
  Bytes both = Reply(1, false);
  const Bytes then = Reply(3, true);
  both.insert(both.end(), then.begin(), then.end());
  EXPECT_EQ(slow.received, both);
  EXPECT_EQ(server.ClientCount(), 2);

  // The port is taken; Close drops every client.
  ModbusServer rival(loop, space, ModbusMapping{});
  EXPECT_FALSE(rival.Listen("127.0.0.1", server.Port()));
  EXPECT_NE(rival.LastError().find("Address already in use"), std::string::npos);
  server.Close();
  ASSERT_TRUE(RunUntil(loop, [&] { return !slow.Poll() && !quick.Poll(); }));
  EXPECT_EQ(server.ClientCount(), 0);
}

}  // namespace
}  // namespace vantrel::hosts::modbus
