#include "vantrel/hosts/modbus/modbus_mapping.h"

#include <gtest/gtest.h>

namespace vantrel::hosts::modbus {
namespace {

TEST(ModbusEndpoint, HostAndPort) {
  std::string error;
  auto e = ParseEndpoint("modbus://10.0.0.7:1502", error);
  ASSERT_TRUE(e) << error;
  EXPECT_EQ(e->host, "10.0.0.7");
  EXPECT_EQ(e->port, 1502);
  e = ParseEndpoint("modbus://plc-north", error);
  ASSERT_TRUE(e) << error;
  EXPECT_EQ(e->port, 502);
  for (const char* bad : {"tcp://plc:502", "modbus://:502", "modbus://plc:0", "modbus://plc:70000",
                          "modbus://plc:x"}) {
    error.clear();
    EXPECT_FALSE(ParseEndpoint(bad, error)) << bad;
    EXPECT_FALSE(error.empty()) << bad;
  }
}

TEST(ModbusMapping, RequestsAreSplitWithoutCuttingARegister) {
  ModbusMapping m;
  m.registerOffset = 10;
  std::string error;
  // 200 registers are 400 holding registers: three full reads of 124 and one of 28.
  const auto reads = m.RegisterReads(5, 200, error);
  ASSERT_EQ(reads.size(), 4u) << error;
  EXPECT_EQ(reads[0].address, 20);
  for (size_t i = 0; i < 3; ++i)
    EXPECT_EQ(reads[i].words, 124);
  EXPECT_EQ(reads[3].address, 20 + 3 * 124);
  EXPECT_EQ(reads[3].words, 28);
  EXPECT_EQ(m.RegisterReads(0, 62, error).size(), 1u);
  EXPECT_EQ(m.RegisterReads(0, 63, error).size(), 2u);
  EXPECT_TRUE(m.RegisterReads(0, 0, error).empty());
}

TEST(ModbusMapping, AddressesOutsideTheSixteenBitSpaceAreRefused) {
  ModbusMapping m;
  std::string error;
  EXPECT_EQ(m.RegisterReads(32767, 1, error).size(), 1u);
  EXPECT_TRUE(error.empty());
  EXPECT_TRUE(m.RegisterReads(32768, 1, error).empty());
  EXPECT_EQ(error, "holding registers 65536 to 65537 lie outside the Modbus address space");
  error.clear();
  EXPECT_TRUE(m.RegisterReads(-1, 2, error).empty());
  EXPECT_FALSE(error.empty());
}

TEST(ModbusMapping, DataBlocksNeedAnAddress) {
  ModbusMapping m;
  std::string error;
  ASSERT_TRUE(m.AddDataBlock("12=4000", error)) << error;
  const auto reads = m.DataBlockReads(12, 3, 2, error);
  ASSERT_EQ(reads.size(), 1u);
  EXPECT_EQ(reads[0].address, 4006);
  EXPECT_EQ(reads[0].words, 4);
  EXPECT_TRUE(m.DataBlockReads(13, 0, 1, error).empty());
  EXPECT_EQ(error,
            "data block 13 has no holding register address (map it with --db-map "
            "13=ADDRESS)");
  for (const char* bad : {"12", "x=1", "12=", "12=65536", "-1=5", "40000=1"}) {
    error.clear();
    EXPECT_FALSE(m.AddDataBlock(bad, error)) << bad;
    EXPECT_FALSE(error.empty());
  }
}

TEST(ModbusMapping, WordOrderDecidesWhichHalfComesFirst) {
  ModbusMapping m;
  const std::vector<uint16_t> words = {0x1234, 0x5678, 0xFFFF, 0xFFFE};
  EXPECT_EQ(m.Join(words), (std::vector<int32_t>{0x12345678, -2}));
  uint16_t first = 0;
  uint16_t second = 0;
  m.Split(-2, first, second);
  EXPECT_EQ(first, 0xFFFF);
  EXPECT_EQ(second, 0xFFFE);
  std::string error;
  ASSERT_TRUE(m.SetWordOrder("lo-hi", error));
  EXPECT_EQ(m.Join(words), (std::vector<int32_t>{0x56781234, static_cast<int32_t>(0xFFFEFFFF)}));
  m.Split(0x12345678, first, second);
  EXPECT_EQ(first, 0x5678);
  EXPECT_EQ(second, 0x1234);
  EXPECT_FALSE(m.SetWordOrder("big", error));
  EXPECT_EQ(error, "the word order is hi-lo or lo-hi, not 'big'");
}

TEST(ModbusMapping, ServersFindTheRegisterBehindEachAddress) {
  ModbusMapping m;
  m.registerOffset = 100;
  std::string error;
  ASSERT_TRUE(m.AddDataBlock("3=5000", error));
  ASSERT_TRUE(m.AddDataBlock("4=6000", error));
  EXPECT_FALSE(m.Locate(99));
  auto p = m.Locate(105);
  ASSERT_TRUE(p);
  EXPECT_FALSE(p->dataBlock);
  EXPECT_EQ(p->index, 2);
  EXPECT_FALSE(p->firstHalf);
  p = m.Locate(5004);
  ASSERT_TRUE(p);
  EXPECT_TRUE(p->dataBlock);
  EXPECT_EQ(p->block, 3);
  EXPECT_EQ(p->index, 2);
  EXPECT_TRUE(p->firstHalf);
  p = m.Locate(6001);
  ASSERT_TRUE(p);
  EXPECT_EQ(p->block, 4);
  EXPECT_EQ(p->index, 0);
}

}  // namespace
}  // namespace vantrel::hosts::modbus
