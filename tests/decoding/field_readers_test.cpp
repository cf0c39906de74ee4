// The field readers: parts cut out of a register taken unsigned, characters, media
// addresses, and the binary, dial and time texts.

#include "decoding/field_readers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "vantrel/manual_clock.h"

namespace vantrel {
namespace {

struct CollectedErrors : ErrorSink {
  std::vector<std::string> texts;
  void ReportError(std::string_view text) override { texts.emplace_back(text); }
};

constexpr int32_t kMinLong = INT32_MIN;

TEST(PartReaders, NegativeRegistersAreReadAsUnsigned) {
  CollectedErrors errors;
  EXPECT_EQ(ReadByte(3, -1, errors), 255);
  EXPECT_EQ(ReadByte(3, kMinLong, errors), 128);
  EXPECT_EQ(ReadNible(7, -1, errors), 15);
  EXPECT_EQ(Read2Bytes(0, -65536, errors), 0);
  EXPECT_EQ(Read2Bytes(0, -1, errors), 65535);
  EXPECT_TRUE(errors.texts.empty());
}

TEST(PartReaders, PartsAreNumberedFromTheLeastSignificant) {
  CollectedErrors errors;
  const int32_t value = 0x12345678;
  const std::vector<int16_t> nibbles = {8, 7, 6, 5, 4, 3, 2, 1};
  for (int16_t i = 0; i < 8; ++i)
    EXPECT_EQ(ReadNible(i, value, errors), nibbles[static_cast<size_t>(i)]) << "nibble " << i;
  EXPECT_EQ(ReadByte(0, value, errors), 0x78);
  EXPECT_EQ(ReadByte(1, value, errors), 0x56);
  EXPECT_EQ(ReadByte(2, value, errors), 0x34);
  EXPECT_EQ(ReadByte(3, value, errors), 0x12);
  EXPECT_EQ(Read2Bytes(0, value, errors), 0x5678);
  EXPECT_EQ(Read2Bytes(1, value, errors), 0x1234);
  EXPECT_TRUE(errors.texts.empty());
}

TEST(PartReaders, TheSlotAfterTheLastPartReadsZeroWithoutAnError) {
  CollectedErrors errors;
  EXPECT_EQ(ReadNible(8, -1, errors), 0);
  EXPECT_EQ(ReadByte(4, -1, errors), 0);
  EXPECT_EQ(Read2Bytes(2, -1, errors), 0);
  EXPECT_TRUE(errors.texts.empty());
}

TEST(PartReaders, AnIndexOutsideTheTableIsReportedAndReadsZero) {
  CollectedErrors errors;
  EXPECT_EQ(ReadNible(9, -1, errors), 0);
  EXPECT_EQ(ReadNible(-1, -1, errors), 0);
  EXPECT_EQ(ReadByte(5, -1, errors), 0);
  EXPECT_EQ(ReadByte(-1, -1, errors), 0);
  EXPECT_EQ(Read2Bytes(3, -1, errors), 0);
  EXPECT_EQ(Read2Bytes(-1, -1, errors), 0);
  EXPECT_EQ(errors.texts, (std::vector<std::string>{
                              "Error in ReadNible function.", "Error in ReadNible function.",
                              "Error in ReadByte function.", "Error in ReadByte function.",
                              "Error in Read2Bytes function.", "Error in Read2Bytes function."}));
}

TEST(CharacterReaders, ReadStringGivesTheBytesMostSignificantFirstUnchanged) {
  CollectedErrors errors;
  EXPECT_EQ(ReadString(0x56544C31, errors), "VTL1");
  EXPECT_EQ(ReadString(0x41000A42, errors), std::string("A\0\nB", 4));
  EXPECT_EQ(ReadString(-1, errors), "\xFF\xFF\xFF\xFF");
  EXPECT_TRUE(errors.texts.empty());
}

TEST(CharacterReaders, ReadASCIIShowsControlCodesAsCode127AndQuotesUnlessRaw) {
  CollectedErrors errors;
  // 31 is the last control code, 32 (blank) the first printable one.
  EXPECT_EQ(ReadASCII(4, 0x001F2009, true, errors), "\x7F\x7F \x7F");
  EXPECT_EQ(ReadASCII(4, 0x41420043, false, errors),
            "'AB\x7F"
            "C'");
  EXPECT_TRUE(errors.texts.empty());
}

TEST(CharacterReaders, ReadASCIIBeyondTheByteTableIsReported) {
  CollectedErrors errors;
  EXPECT_EQ(ReadASCII(6, 0x41424344, true, errors), "");
  EXPECT_EQ(errors.texts, std::vector<std::string>{"Error in ReadASCII function."});
}

TEST(MediaAddresses, EachMediaCodeHasItsPrefix) {
  CollectedErrors errors;
  EXPECT_EQ(ReadMedia(0x00030000 + 12, errors), "F 12");
  EXPECT_EQ(ReadMedia(0x00120000 + 1600, errors), "C 1600");
  EXPECT_EQ(ReadMedia(0x00130000 + 5, errors), "T 5");
  EXPECT_EQ(ReadMedia(0x00140000 + 3, errors), "I 3");
  EXPECT_EQ(ReadMedia(0x00050000, errors), "R 0");
  EXPECT_TRUE(errors.texts.empty());
}

TEST(MediaAddresses, OtherCodesGiveTheBareAddressAndByte3IsIgnored) {
  CollectedErrors errors;
  EXPECT_EQ(ReadMedia(1200, errors), "1200");
  EXPECT_EQ(ReadMedia(0x7F050000 + 1200, errors), "R 1200");
  // A negative register is taken plus 2^32: 0xFF050064.
  EXPECT_EQ(ReadMedia(static_cast<int32_t>(0xFF050064u), errors), "R 100");
  EXPECT_TRUE(errors.texts.empty());
}

TEST(MediaAddresses, AnAddressAbove32767IsReported) {
  CollectedErrors errors;
  EXPECT_EQ(ReadMedia(0x00050000 + 32767, errors), "R 32767");
  EXPECT_TRUE(errors.texts.empty());
  EXPECT_EQ(ReadMedia(-1, errors), "");
  EXPECT_EQ(errors.texts, std::vector<std::string>{"Error in ReadMedia function."});
}

TEST(BinaryText, WidthsOfNibbleByteAndWord) {
  EXPECT_EQ(FormatBinary(0, 4), "0000");
  EXPECT_EQ(FormatBinary(0x1F, 4), "1111");
  EXPECT_EQ(FormatBinary(0xABCD, 16), "10101011 11001101");
  EXPECT_EQ(FormatBinary(0x1FF, 8), "11111111");
}

TEST(BinaryText, TheThirteenZeroPadCanLeaveTheTextShorterThanTheWidth) {
  // Octal "1" gives 001; with the pad that is 16 characters, and no blank for width 32.
  EXPECT_EQ(FormatBinary(1, 32), "0000000000000001");
  // Octal 200000: 18 digits plus 13 zeros.
  EXPECT_EQ(FormatBinary(65536, 32), "0000000000000010000000000000000");
  EXPECT_EQ(FormatBinary(0x12345678, 32), "00010010001101000101011001111000");
}

TEST(BinaryText, NegativeValuesUseTheirThirtyTwoBitPattern) {
  EXPECT_EQ(FormatBinary(-1, 32), std::string(32, '1'));
  EXPECT_EQ(FormatBinary(-1, 16), "11111111 11111111");
  EXPECT_EQ(FormatBinary(kMinLong, 32), "1" + std::string(31, '0'));
}

TEST(DialText, LettersInAnyCaseAndOnlyTheRightmostWidthCharactersCount) {
  EXPECT_EQ(FormatDialString(4, "cdef"), "W,+ ");
  EXPECT_EQ(FormatDialString(2, "1A2B"), "2#");
  EXPECT_EQ(FormatDialString(4, "G1"), "001");
  EXPECT_EQ(FormatDialString(0, "F"), "");
}

struct TimeTexts : ::testing::Test {
  ManualClock clock{DateTime{2026, 3, 2, 9, 0, 0, 0}};
};

TEST_F(TimeTexts, LettersSelectTimeDateOrBoth) {
  EXPECT_EQ(FormatTimeValue("D", 1115143025, clock), "15/11/26");
  EXPECT_EQ(FormatTimeValue("X", 0, clock), "00/00/26 00:00:00");
  // The letter is compared as a whole: "hh" is another letter.
  EXPECT_EQ(FormatTimeValue("hh", 1115143025, clock), "15/11/26 14:30:25");
}

TEST_F(TimeTexts, EveryPartHasTwoDigitsAndTheYearIsThePCs) {
  EXPECT_EQ(FormatTimeValue("x", 102030405, clock), "02/01/26 03:04:05");
  EXPECT_EQ(FormatTimeValue("x", 2147483647, clock), "47/21/26 48:36:47");
  clock.Set(DateTime{2031, 1, 1});
  EXPECT_EQ(FormatTimeValue("d", 1115143025, clock), "15/11/31");
  clock.Set(DateTime{2100, 1, 1});
  EXPECT_EQ(FormatTimeValue("d", 1115143025, clock), "15/11/00");
  EXPECT_EQ(FormatTimeValue("", kMinLong, clock), "Invalid time");
}

}  // namespace
}  // namespace vantrel
