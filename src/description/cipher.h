#pragma once
// The cipher of description files: each character of a line is shifted by a code of a fixed
// key, the key position moving one step per character and per line. Section headers and the
// whole INFO section stay plain. Characters from 128 up cannot be enciphered and come back
// as code 127.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

inline constexpr std::string_view kCipherKey = "QzPlume_Cloak-4";

// The key as character codes; the key position runs 0..CipherLast and then wraps to 0.
struct CipherKey {
  std::array<int16_t, kCipherKey.size()> CipherCodes{};
  int16_t CipherLast = 0;
};

constexpr CipherKey InitCipherKey() {
  CipherKey key;
  for (size_t i = 0; i < kCipherKey.size(); ++i) {
    key.CipherCodes[i] = static_cast<unsigned char>(kCipherKey[i]);
  }
  key.CipherLast = static_cast<int16_t>(kCipherKey.size() - 1);
  return key;
}

// Enciphers a whole plain description (bytes; every output line ends in CR LF).
std::string EncipherText(std::string_view plain);
// Deciphers a whole enciphered description; nothing when a character is below its key
// code (the text was not enciphered with this key). `partial` receives the lines
// deciphered before the failure.
std::optional<std::string> DecipherText(std::string_view enciphered,
                                        std::string* partial = nullptr);

// Enciphers `sourcePath` into the path up to its last "." followed by ".vtld" (the whole path
// followed by ".vtld" when it has no "."); the result text is "Cryptage successful !" or
// "Cannot open file ".
std::string EncryptDescription(std::string_view sourcePath);
// Deciphers `sourcePath` (which must end in ".vtl" or ".vtld") in memory and returns the plain
// text; nothing, with `errorText` set, when the name or the text is refused. Throws
// RuntimeError when the file cannot be read. The plain text never goes to a file.
std::optional<std::string> DecryptDescription(std::string_view sourcePath, std::string& errorText);

}  // namespace vantrel
