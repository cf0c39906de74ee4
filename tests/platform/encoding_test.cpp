#include "vantrel/encoding.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

// Windows-1252 letters become UTF-8 and every byte comes back; what Windows-1252 cannot hold
// (and malformed UTF-8) becomes a question mark; a console line shows its line breaks.
TEST(Encoding, Cp1252AndUtf8BothWays) {
  EXPECT_EQ(Cp1252ToUtf8("\xE9\x80\x7F"), "\xC3\xA9\xE2\x82\xAC\x7F");  // é, the euro sign
  std::string all;
  for (int b = 1; b < 256; ++b)
    all.push_back(static_cast<char>(b));
  EXPECT_EQ(Utf8ToCp1252(Cp1252ToUtf8(all)), all);
  EXPECT_EQ(Utf8ToCp1252("\xE4\xB8\xAD|a\xC3|\xFF"), "?|a?|?");  // CJK, truncated, invalid
  EXPECT_EQ(Cp1252ToUtf8Line("Invalid buffer\rBad key\n\xE9t\xE9"),
            "Invalid buffer\\rBad key\\n\xC3\xA9t\xC3\xA9");
}

}  // namespace
}  // namespace vantrel
