// The decipher step on arbitrary bytes: it stops at the first character it cannot
// decipher, keeping only whole lines before it; what it deciphers, it enciphers again.
#include "description/cipher.h"
#include "fuzz_support.h"

namespace {

bool WholeLines(std::string_view text) {
  return text.empty() || (text.size() >= 2 && text.substr(text.size() - 2) == "\r\n");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  const std::string_view input = vantrel::fuzz::AsText(data, size);
  std::string partial;
  const std::optional<std::string> plain = DecipherText(input, &partial);
  fuzz::Check(WholeLines(partial), "what was deciphered is whole lines");
  if (plain) {
    fuzz::Check(*plain == partial, "a complete decipher is also the partial text");
    // Enciphering never fails and gives whole lines again.
    fuzz::Check(WholeLines(EncipherText(*plain)), "enciphered text is whole lines");
  }
  return 0;
}
