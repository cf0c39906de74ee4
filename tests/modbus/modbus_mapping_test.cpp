#include "vantrel/hosts/modbus/modbus_mapping.h"

#include <gtest/gtest.h>

#include <tuple>

#include "vantrel/hosts/modbus/retry_backoff.h"

namespace vantrel::hosts::modbus {
namespace {

// The reads of a request: none longer than the protocol carries, pairs whole, in address
// order without gaps, covering exactly the registers asked for.
void ExpectWholeCover(const std::vector<HoldingRead>& reads, int32_t address, int32_t registers) {
  int32_t next = address;
  for (const HoldingRead& read : reads) {
    EXPECT_EQ(read.address, next);
    EXPECT_TRUE(read.words > 0 && read.words <= kMaxReadWords && read.words % 2 == 0);
    next += read.words;
  }
  EXPECT_EQ(next - address, 2 * registers);
}

TEST(ModbusOptions, EndpointsUnitsAndWordOrders) {
  std::string error;
  for (const auto& [text, host, port] : {std::tuple{"modbus://10.0.0.7:1502", "10.0.0.7", 1502},
                                         std::tuple{"modbus://plc-north/", "plc-north", 502},
                                         std::tuple{"modbus://[::1]:1503", "::1", 1503}}) {
    const auto e = ParseEndpoint(text, error).value_or(Endpoint{"none", 0});
    EXPECT_EQ(e.host + " " + std::to_string(e.port),
              std::string(host) + " " + std::to_string(port));
  }
  for (const char* bad : {"tcp://plc:502", "modbus://:502", "modbus://plc:0", "modbus://plc:70000",
                          "modbus://plc:", "modbus://[::1", "modbus://[::1]x", "modbus://plc:502/x",
                          "modbus://p lc"}) {
    EXPECT_FALSE(ParseEndpoint(bad, error)) << bad;
    EXPECT_NE(error.find(std::string("'") + bad + "'"), std::string::npos) << error;
  }
  EXPECT_FALSE(ParseEndpoint("modbus://::1", error));
  EXPECT_EQ(error,
            "an IPv6 address is written in brackets: modbus://[ADDRESS]:PORT, not 'modbus://::1'");

  // The unit ids a link and a client take.
  for (const int unit : {0, 247, 255})
    EXPECT_TRUE(IsUnitId(unit)) << unit;
  for (const int unit : {-1, 248, 254, 256})
    EXPECT_FALSE(IsUnitId(unit)) << unit;
  ModbusMapping m;
  EXPECT_FALSE(m.SetWordOrder("big", error));
  EXPECT_EQ(error, "the word order is hi-lo or lo-hi, not 'big'");
}

TEST(ModbusMapping, ReadsOutsideTheAddressSpaceOrUnmappedAreErrors) {
  ModbusMapping m;
  std::string error;
  ExpectWholeCover(m.RegisterReads(32767, 1, error), 65534, 1);
  EXPECT_TRUE(m.RegisterReads(0, 0, error).empty());
  EXPECT_EQ(error, "") << "nothing to read is no error";
  EXPECT_TRUE(m.RegisterReads(32767, 2, error).empty());
  EXPECT_EQ(error, "holding registers 65534 to 65537 lie outside the Modbus address space");
  for (const auto& [first, count] : {std::pair{-1, 2}, std::pair{0, -3}}) {
    error.clear();
    EXPECT_TRUE(m.RegisterReads(first, count, error).empty());
    EXPECT_FALSE(error.empty()) << first << " " << count;
  }

  ASSERT_TRUE(m.AddDataBlock("12=4000", error)) << error;
  ExpectWholeCover(m.DataBlockReads(12, 3, 70, error), 4006, 70);
  for (const char* bad : {"12", "x=1", "12=", "=5", "12=65536", "-1=5", "40000=1", "1=2=3"})
    EXPECT_FALSE(m.AddDataBlock(bad, error)) << bad;
  EXPECT_EQ(m.dataBlocks, (std::map<int32_t, int32_t>{{12, 4000}}));
}

TEST(ModbusMapping, ServersFindTheRegisterBehindEachAddress) {
  ModbusMapping m;
  m.registerOffset = 100;
  m.dataBlocks = {{3, 5000}, {4, 6000}, {9, 40}, {8, 5000}};
  // address -> data block (-1: the registers), register or word, which half.
  struct Case {
    int32_t address, block, index;
    bool firstHalf;
  };
  // A block below the register offset owns the addresses up to it; the registers own theirs
  // up to the next block; of two blocks at one address the lower number has it.
  for (const Case c :
       {Case{40, 9, 0, true}, Case{99, 9, 29, false}, Case{100, -1, 0, true},
        Case{4999, -1, 2449, false}, Case{5004, 3, 2, true}, Case{65535, 4, 29767, false}}) {
    const auto p = m.Locate(c.address);
    ASSERT_TRUE(p) << c.address;
    EXPECT_EQ(std::tuple(p->dataBlock ? p->block : -1, p->index, p->firstHalf),
              std::tuple(c.block, c.index, c.firstHalf))
        << c.address;
  }
  EXPECT_FALSE(m.Locate(39));
  // A block mapped onto the register offset itself takes the addresses from the registers.
  m.dataBlocks[1] = 100;
  EXPECT_TRUE(m.Locate(100)->dataBlock);
}

TEST(RetryBackoff, DoublesUpToTheLongestAndStartsOverAfterASuccess) {
  RetryBackoff backoff(100, 2000);
  std::vector<int> waits;
  for (int i = 0; i < 7; ++i)
    waits.push_back(backoff.Next());
  EXPECT_EQ(waits, (std::vector<int>{100, 200, 400, 800, 1600, 2000, 2000}));
  backoff.Reset();
  EXPECT_EQ(backoff.Next(), 100);
}

}  // namespace
}  // namespace vantrel::hosts::modbus
