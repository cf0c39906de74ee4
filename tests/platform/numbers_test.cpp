#include "platform/numbers.h"

#include <gtest/gtest.h>

#include <utility>

#include "platform/runtime_error.h"
#include "support/runtime_errors.h"

namespace vantrel {
namespace {

using testing::ErrorOf;

// A bare exponent mark is not part of the number; hexadecimal and octal literals of up to 16
// bits read as signed 16-bit values.
TEST(Val, ReadsTheLongestNumericPrefix) {
  const std::pair<const char*, double> cases[] = {
      {"-4", -4},   {"2.5x", 2.5},  {".5", 0.5},        {"1.5E3", 1500},
      {"7E", 7},    {"", 0},        {"abc", 0},         {"-", 0},
      {".", 0},     {"1 2 3", 123}, {"\t 7 ,8", 7},     {"&hff", 255},
      {"&O17", 15}, {"&HFFFF", -1}, {"&H10000", 65536}, {"&HFFFFFFFF", -1},
      {"&H", 0}};
  for (const auto& [text, value] : cases)
    EXPECT_EQ(Val(text), value) << text;
  EXPECT_THROW(Val("&H100000000"), RuntimeError);
}

TEST(Rounding, HalvesGoToEvenAndOutOfRangeIsAnOverflow) {
  const std::pair<double, int16_t> cases[] = {{0.5, 0},   {1.5, 2},         {2.5, 2},
                                              {-1.5, -2}, {32767.4, 32767}, {-32768.0, -32768}};
  for (const auto& [value, rounded] : cases)
    EXPECT_EQ(RoundToInt16(value), rounded) << value;
  EXPECT_EQ(ErrorOf([] { RoundToInt16(32767.5); }), "Overflow");
  EXPECT_EQ(RoundToInt32(2.5001), 3);
  EXPECT_EQ(RoundToInt32(-2147483648.0), INT32_MIN);
  EXPECT_THROW(RoundToInt32(2147483648.0), RuntimeError);
}

// StrictToInt16 is read through the description loader's column width.
TEST(IsNumeric, FollowsTheDecimalSeparator) {
  EXPECT_TRUE(IsNumeric(" 12.5") && IsNumeric("12,5", ',') && IsNumeric("-3"));
  EXPECT_FALSE(IsNumeric("12,5") || IsNumeric("") || IsNumeric("----------------"));
}

}  // namespace
}  // namespace vantrel
