#include "platform/numbers.h"

#include <gtest/gtest.h>

#include "platform/runtime_error.h"
#include "support/runtime_errors.h"

namespace vantrel {
namespace {

using testing::ErrorOf;

TEST(Val, ReadsTheLongestNumericPrefix) {
  EXPECT_EQ(Val("-4"), -4.0);
  EXPECT_EQ(Val("2.5x"), 2.5);
  EXPECT_EQ(Val(".5"), 0.5);
  EXPECT_EQ(Val("1.5E3"), 1500.0);
  EXPECT_EQ(Val("7E"), 7.0);  // a bare exponent mark is not part of the number
}

TEST(Val, TextWithoutNumberReadsZero) {
  EXPECT_EQ(Val(""), 0.0);
  EXPECT_EQ(Val("abc"), 0.0);
  EXPECT_EQ(Val("-"), 0.0);
  EXPECT_EQ(Val("."), 0.0);
}

TEST(Val, SkipsBlanksInsideTheNumber) {
  EXPECT_EQ(Val("1 2 3"), 123.0);
  EXPECT_EQ(Val("\t 7 ,8"), 7.0);
}

TEST(Val, ReadsHexadecimalAndOctalLiterals) {
  EXPECT_EQ(Val("&hff"), 255.0);
  EXPECT_EQ(Val("&O17"), 15.0);
  EXPECT_EQ(Val("&HFFFF"), -1.0);  // up to 16 bits reads as a signed 16-bit value
  EXPECT_EQ(Val("&H10000"), 65536.0);
  EXPECT_EQ(Val("&HFFFFFFFF"), -1.0);
  EXPECT_EQ(Val("&H"), 0.0);
  EXPECT_THROW(Val("&H100000000"), RuntimeError);
}

TEST(Rounding, HalvesGoToEven) {
  EXPECT_EQ(RoundToInt16(0.5), 0);
  EXPECT_EQ(RoundToInt16(1.5), 2);
  EXPECT_EQ(RoundToInt16(2.5), 2);
  EXPECT_EQ(RoundToInt16(-1.5), -2);
  EXPECT_EQ(RoundToInt32(2.5001), 3);
}

TEST(Rounding, OutOfRangeIsAnOverflow) {
  EXPECT_EQ(RoundToInt16(32767.4), 32767);
  EXPECT_EQ(RoundToInt16(-32768.0), -32768);
  EXPECT_EQ(ErrorOf([] { RoundToInt16(32767.5); }), "Overflow");
  EXPECT_THROW(RoundToInt32(2147483648.0), RuntimeError);
  EXPECT_EQ(RoundToInt32(-2147483648.0), INT32_MIN);
}

TEST(StrictToInt16, AcceptsOnlyAWholeNumber) {
  EXPECT_EQ(StrictToInt16(" 12 "), 12);
  EXPECT_EQ(StrictToInt16("1.5"), 2);
  EXPECT_EQ(StrictToInt16("&H10"), 16);
  for (const char* bad : {"", "   ", "abc", "16abc", "1 2", "&H"})
    EXPECT_EQ(ErrorOf([&] { StrictToInt16(bad); }), "Type mismatch") << bad;
  EXPECT_EQ(ErrorOf([] { StrictToInt16("40000"); }), "Overflow");
}

TEST(IsNumeric, FollowsTheDecimalSeparator) {
  EXPECT_TRUE(IsNumeric(" 12.5"));
  EXPECT_FALSE(IsNumeric("12,5"));
  EXPECT_TRUE(IsNumeric("12,5", ','));
  EXPECT_FALSE(IsNumeric(""));
  EXPECT_FALSE(IsNumeric("----------------"));
  EXPECT_TRUE(IsNumeric("-3"));
}

}  // namespace
}  // namespace vantrel
