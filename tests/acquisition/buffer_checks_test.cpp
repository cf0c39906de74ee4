#include "acquisition/buffer_checks.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/recording_host.h"

namespace vantrel {
namespace {

using testing::Packed;

const std::string kBadStart = "Invalid buffer\rCheck the start register value";

// Register mode up to 8000, data-block mode when the high half is "D"; anything else fails.
TEST(StartRegister, ModesAndInvalidWords) {
  struct Case {
    int32_t word;
    bool ok;
    bool dataBlock;
    int32_t start;
  };
  for (const Case c : {Case{0, true, false, 0}, Case{8000, true, false, 8000},
                       Case{0x00440064, true, true, 100}, Case{0x00450064, true, false, 100},
                       Case{8001, false, false, 0}, Case{0x01000000, false, false, 0},
                       Case{-1, false, false, 0}, Case{0x0044FFFF, false, false, 0}}) {
    BufferState b;
    b.DBMode = !c.dataBlock;
    std::string err;
    EXPECT_EQ(CheckStartRegister(c.word, b, err), c.ok) << c.word;
    if (c.ok) {
      EXPECT_EQ(b.DBMode, c.dataBlock) << c.word;
      EXPECT_EQ(b.BufferStart, c.start) << c.word;
    } else {
      EXPECT_EQ(err, kBadStart) << c.word;
    }
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

TEST(Header, UnknownFormatShortKeyAndShortVtl2HeaderFail) {
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
  h = Header("VTL2", "PMP1", 1, 10);
  h.resize(8);
  b.HeaderLength = 8;
  EXPECT_FALSE(CheckHeader(h, b, err));
  EXPECT_EQ(b.HeaderLength, 16) << "the next header read asks for the long header";
}

}  // namespace
}  // namespace vantrel
