// The field readers: parts cut out of a register taken unsigned, characters, media
// addresses, and the binary, dial and time texts.

#include "decoding/field_readers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/date_serial.h"
#include "vantrel/manual_clock.h"

namespace vantrel {
namespace {

struct CollectedErrors : ErrorSink {
  std::vector<std::string> texts;
  void ReportError(std::string_view text) override { texts.emplace_back(text); }
};

constexpr int32_t kMinLong = INT32_MIN;

// Parts are numbered from the least significant and read from the register taken unsigned;
// the slot after the last part reads 0 silently, an index outside the table is reported.
TEST(PartReaders, PartsOfTheUnsignedRegisterAndIndexesOutsideTheTable) {
  using Reader = std::function<int32_t(int16_t, int32_t, ErrorSink&)>;
  const Reader nible = [](int16_t i, int32_t v, ErrorSink& e) { return ReadNible(i, v, e); };
  const Reader byte = [](int16_t i, int32_t v, ErrorSink& e) { return ReadByte(i, v, e); };
  const Reader word = [](int16_t i, int32_t v, ErrorSink& e) { return Read2Bytes(i, v, e); };
  struct Case {
    const Reader* reader;
    int16_t index;
    int32_t value;
    int32_t part;
    const char* error;
  };
  const std::vector<Case> cases = {
      {&nible, 0, 0x12345678, 8, nullptr},
      {&nible, 6, 0x12345678, 2, nullptr},
      {&nible, 7, -1, 15, nullptr},
      {&nible, 8, -1, 0, nullptr},
      {&nible, 9, -1, 0, "Error in ReadNible function."},
      {&nible, -1, -1, 0, "Error in ReadNible function."},
      {&byte, 1, 0x12345678, 0x56, nullptr},
      {&byte, 3, kMinLong, 128, nullptr},
      {&byte, 4, -1, 0, nullptr},
      {&byte, 5, -1, 0, "Error in ReadByte function."},
      {&byte, -1, -1, 0, "Error in ReadByte function."},
      {&word, 1, 0x12345678, 0x1234, nullptr},
      {&word, 0, -65536, 0, nullptr},
      {&word, 0, -1, 65535, nullptr},
      {&word, 2, -1, 0, nullptr},
      {&word, 3, -1, 0, "Error in Read2Bytes function."},
      {&word, -1, -1, 0, "Error in Read2Bytes function."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.index) + " of " + std::to_string(c.value));
    CollectedErrors errors;
    EXPECT_EQ((*c.reader)(c.index, c.value, errors), c.part);
    EXPECT_EQ(errors.texts,
              c.error ? std::vector<std::string>{c.error} : std::vector<std::string>{});
  }
}

TEST(CharacterReaders, StringsASCIIAndMediaAddresses) {
  CollectedErrors errors;
  EXPECT_EQ(ReadString(0x56544C31, errors), "VTL1");
  EXPECT_EQ(ReadString(0x41000A42, errors), std::string("A\0\nB", 4));
  EXPECT_EQ(ReadString(-1, errors), "\xFF\xFF\xFF\xFF");
  // 31 is the last control code, 32 (blank) the first printable one.
  EXPECT_EQ(ReadASCII(4, 0x001F2009, true, errors), "\x7F\x7F \x7F");
  EXPECT_EQ(ReadASCII(4, 0x41420043, false, errors),
            "'AB\x7F"
            "C'");
  EXPECT_TRUE(errors.texts.empty());
  EXPECT_EQ(ReadASCII(6, 0x41424344, true, errors), "");
  EXPECT_EQ(errors.texts, std::vector<std::string>{"Error in ReadASCII function."});
  // Media addresses: prefixes, bare addresses and the limit.
  errors.texts.clear();
  EXPECT_EQ(ReadMedia(0x00030000 + 12, errors), "F 12");
  EXPECT_EQ(ReadMedia(0x00120000 + 1600, errors), "C 1600");
  EXPECT_EQ(ReadMedia(0x00130000 + 5, errors), "T 5");
  EXPECT_EQ(ReadMedia(0x00140000 + 3, errors), "I 3");
  EXPECT_EQ(ReadMedia(0x00050000 + 32767, errors), "R 32767");
  EXPECT_EQ(ReadMedia(1200, errors), "1200");
  // Byte 3 is ignored, also when it makes the register negative.
  EXPECT_EQ(ReadMedia(static_cast<int32_t>(0xFF050064u), errors), "R 100");
  EXPECT_TRUE(errors.texts.empty());
  EXPECT_EQ(ReadMedia(-1, errors), "");
  EXPECT_EQ(errors.texts, std::vector<std::string>{"Error in ReadMedia function."});
}

TEST(BinaryAndDialTexts, WidthsPaddingLettersAndNegativeValues) {
  EXPECT_EQ(FormatBinary(0x1F, 4), "1111");
  EXPECT_EQ(FormatBinary(0xABCD, 16), "10101011 11001101");
  EXPECT_EQ(FormatBinary(0x1FF, 8), "11111111");
  // Octal "1" gives 001; with the thirteen-zero pad that is 16 characters, and no blank.
  EXPECT_EQ(FormatBinary(1, 32), "0000000000000001");
  // Octal 200000: 18 digits plus 13 zeros.
  EXPECT_EQ(FormatBinary(65536, 32), "0000000000000010000000000000000");
  EXPECT_EQ(FormatBinary(0x12345678, 32), "00010010001101000101011001111000");
  EXPECT_EQ(FormatBinary(-1, 16), "11111111 11111111");
  EXPECT_EQ(FormatBinary(kMinLong, 32), "1" + std::string(31, '0'));
  // Dial texts: letters in any case, and only the rightmost `width` characters count.
  EXPECT_EQ(FormatDialString(4, "cdef"), "W,+ ");
  EXPECT_EQ(FormatDialString(2, "1A2B"), "2#");
  EXPECT_EQ(FormatDialString(4, "G1"), "001");
  EXPECT_EQ(FormatDialString(0, "F"), "");
}

TEST(TimeTexts, LettersTwoDigitPartsAndThePCsYear) {
  ManualClock clock{DateTime{2026, 3, 2, 9, 0, 0, 0}};
  EXPECT_EQ(FormatTimeValue("D", 1115143025, clock), "15/11/26");
  EXPECT_EQ(FormatTimeValue("X", 0, clock), "00/00/26 00:00:00");
  // The letter is compared as a whole: "hh" is another letter.
  EXPECT_EQ(FormatTimeValue("hh", 1115143025, clock), "15/11/26 14:30:25");
  EXPECT_EQ(FormatTimeValue("x", 102030405, clock), "02/01/26 03:04:05");
  EXPECT_EQ(FormatTimeValue("x", 2147483647, clock), "47/21/26 48:36:47");
  EXPECT_EQ(FormatTimeValue("", kMinLong, clock), "Invalid time");
  clock.Set(DateTime{2100, 1, 1});
  EXPECT_EQ(FormatTimeValue("d", 1115143025, clock), "15/11/00");
}

// A stamp's serial comes from its fields: it must be what reading its text back gives, for
// valid and invalid dates and times, in years on either side of the two-digit limit.
TEST(TimeTexts, SerialsAreThoseOfTheirTexts) {
  const std::vector<int32_t> stamps = {0,         101000000,  228235959,  229240000,  430000060,
                                       431006000, 1231120000, 1301120000, 2147483647, -1};
  for (const int year : {2024, 2025, 2029, 2030}) {
    for (const char* letter : {"", "h", "D", "x"}) {
      for (const int32_t value : stamps) {
        std::string text;
        const ManualClock clock{DateTime{year, 6, 1}};
        const auto serial = AssignTimeValue(text, StampShapeOf(letter), value, clock);
        EXPECT_EQ(serial, DateSerialFromText(text)) << text;
      }
    }
  }
}

}  // namespace
}  // namespace vantrel
