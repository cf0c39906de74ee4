#include "vantrel/encoding.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(Encoding, Cp1252LettersBecomeUtf8AndEveryByteRoundTrips) {
  EXPECT_EQ(Cp1252ToUtf8("\xE9"), "\xC3\xA9");      // é
  EXPECT_EQ(Cp1252ToUtf8("\x80"), "\xE2\x82\xAC");  // euro sign
  EXPECT_EQ(Cp1252ToUtf8("\x7F"), "\x7F");
  std::string all;
  for (int b = 1; b < 256; ++b)
    all.push_back(static_cast<char>(b));
  EXPECT_EQ(Utf8ToCp1252(Cp1252ToUtf8(all)), all);
}

TEST(Encoding, AConsoleLineKeepsLineBreaksVisible) {
  EXPECT_EQ(Cp1252ToUtf8Line("Invalid buffer\rBad key\n\xE9t\xE9"),
            "Invalid buffer\\rBad key\\n\xC3\xA9t\xC3\xA9");
}

TEST(Encoding, UnmappableAndMalformedUtf8BecomeQuestionMarks) {
  EXPECT_EQ(Utf8ToCp1252("\xE4\xB8\xAD"), "?");  // a CJK character
  EXPECT_EQ(Utf8ToCp1252("a\xC3"), "a?");        // truncated sequence
  EXPECT_EQ(Utf8ToCp1252("\xFF"), "?");
}

}  // namespace
}  // namespace vantrel
