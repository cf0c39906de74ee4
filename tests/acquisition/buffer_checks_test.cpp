#include "acquisition/buffer_checks.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/recording_host.h"

namespace vantrel {
namespace {

using testing::Packed;

const std::string kBadStart = "Invalid buffer\rCheck the start register value";

TEST(StartRegister, RegisterModeUpTo8000) {
  for (int32_t word : {0, 8000}) {
    BufferState b;
    std::string err;
    EXPECT_TRUE(CheckStartRegister(word, b, err)) << word;
    EXPECT_FALSE(b.DBMode);
    EXPECT_EQ(b.BufferStart, word);
  }
}

TEST(StartRegister, DataBlockModeWhenTheHighHalfIsD) {
  BufferState b;
  std::string err;
  ASSERT_TRUE(CheckStartRegister(0x00440064, b, err));
  EXPECT_TRUE(b.DBMode);
  EXPECT_EQ(b.BufferStart, 100);
  ASSERT_TRUE(CheckStartRegister(0x00450064, b, err));  // "E" is not a data block
  EXPECT_FALSE(b.DBMode);
}

TEST(StartRegister, InvalidWordsFailWithOneCarriageReturn) {
  for (int32_t word : {8001, 0x01000000, -1, 0x0044FFFF}) {
    BufferState b;
    std::string err;
    EXPECT_FALSE(CheckStartRegister(word, b, err)) << word;
    EXPECT_EQ(err, kBadStart) << word;
  }
}

std::vector<int32_t> Header(const char (&format)[5], const char (&key)[5], int32_t version,
                            int32_t length) {
  std::vector<int32_t> h(16, 0);
  h[0] = Packed(format);
  h[1] = Packed(key);
  h[2] = version;
  h[3] = length;
  h[8] = 9;
  h[10] = 7;
  return h;
}

TEST(Header, Vtl2ReadsSixteenWordsWithCommandAndExportIndex) {
  BufferState b;
  std::string err;
  ASSERT_TRUE(CheckHeader(Header("VTL2", "PMP1", -3, 4096), b, err));
  EXPECT_EQ(b.FormatKey, "VTL2");
  EXPECT_EQ(b.HeaderKey, "PMP1");
  EXPECT_EQ(b.HeaderVersion, 3);
  EXPECT_EQ(b.BufferLen, 4096);
  EXPECT_EQ(b.HeaderLength, 16);
  EXPECT_EQ(b.RecordReadOffset, 16);
  EXPECT_EQ(b.CommandWord, 9);
  EXPECT_EQ(b.LastCommand, 9) << "a standing command is not carried out";
  EXPECT_EQ(b.ExportIndex, 7);
}

TEST(Header, Vtl1HasAnEightWordHeaderAndNoCommandWord) {
  BufferState b;
  std::string err;
  std::vector<int32_t> h = Header("VTL1", "PMP1", 1, 100);
  h.resize(8);
  ASSERT_TRUE(CheckHeader(h, b, err));
  EXPECT_EQ(b.HeaderLength, 8);
  EXPECT_EQ(b.RecordReadOffset, 8);
  EXPECT_EQ(b.CommandWord, 0);
  EXPECT_EQ(b.ExportIndex, 0);
}

TEST(Header, SizeLimitsDependOnTheMode) {
  struct Case {
    bool db;
    int32_t length;
    bool ok;
  };
  for (const Case c :
       {Case{false, 1, true}, Case{false, 0, false}, Case{false, 4096, true},
        Case{false, 4097, false}, Case{true, 16383, true}, Case{true, 16384, false}}) {
    BufferState b;
    b.DBMode = c.db;
    std::string err;
    EXPECT_EQ(CheckHeader(Header("VTL2", "PMP1", 1, c.length), b, err), c.ok) << c.length;
    if (!c.ok) {
      EXPECT_EQ(err, "Invalid buffer\rBad size value");
    }
  }
}

TEST(Header, UnknownFormatAndShortKeyFail) {
  BufferState b;
  std::string err;
  EXPECT_FALSE(CheckHeader(Header("VTL3", "PMP1", 1, 10), b, err));
  EXPECT_EQ(err, kBadStart);
  EXPECT_FALSE(CheckHeader(Header("vtl2", "PMP1", 1, 10), b, err)) << "keys are case-sensitive";

  std::vector<int32_t> h = Header("VTL2", "PMP1", 1, 10);
  h[1] = 0x414200;  // "\0AB\0": a key cut short
  EXPECT_FALSE(CheckHeader(h, b, err));
  EXPECT_EQ(err, "Invalid buffer\rBad key value");
  EXPECT_EQ(b.FormatKey, "VTL2") << "what was read before the failure stays";
}

TEST(Header, Vtl2ReadWithTheShortHeaderIsRefused) {
  BufferState b;
  std::string err;
  std::vector<int32_t> h = Header("VTL2", "PMP1", 1, 10);
  h.resize(8);
  EXPECT_FALSE(CheckHeader(h, b, err));
  EXPECT_EQ(b.HeaderLength, 16) << "the next header read asks for the long header";
}

}  // namespace
}  // namespace vantrel
