#include "description/cipher.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/paths.h"
#include "platform/runtime_error.h"
#include "platform/text_file.h"

namespace vantrel {
namespace {

constexpr CipherKey kKey = InitCipherKey();

int Code(int k) {
  return kKey.CipherCodes[static_cast<size_t>(k)];
}
int Next(int position) {
  return position < kKey.CipherLast ? position + 1 : 0;
}

enum class Direction { Encipher, Decipher };

// Runs every line through the cipher; false at the first character that cannot be
// deciphered, with `out` holding the lines done before it.
bool Transform(std::string_view text, Direction direction, std::string& out) {
  int lineStart = 0;
  bool info = false;
  for (const std::string& line : SplitLines(text)) {
    if (line.empty()) {
      out += "\r\n";
      continue;
    }
    if (line.front() == '[') {
      lineStart = 0;
      info = line.find("INFO") != std::string::npos;
      (out += line) += "\r\n";
      continue;
    }
    if (info) {
      (out += line) += "\r\n";
      continue;
    }
    std::string transformed;
    transformed.reserve(line.size());
    int k = lineStart;
    for (char ch : line) {
      const int c = static_cast<unsigned char>(ch);
      int result = 0;
      if (direction == Direction::Encipher) {
        result = c < 128 ? c + Code(k) : Code(k) + 127;
      } else {
        if (c < Code(k)) return false;
        result = c >= 255 ? 255 - Code(k) : c - Code(k);
      }
      transformed.push_back(static_cast<char>(result));
      k = Next(k);
    }
    (out += transformed) += "\r\n";
    lineStart = Next(lineStart);
  }
  return true;
}

bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

}  // namespace

std::string EncipherText(std::string_view plain) {
  std::string out;
  Transform(plain, Direction::Encipher, out);
  return out;
}

std::optional<std::string> DecipherText(std::string_view enciphered, std::string* partial) {
  std::string out;
  const bool ok = Transform(enciphered, Direction::Decipher, out);
  if (partial != nullptr) *partial = out;
  if (!ok) return std::nullopt;
  return out;
}

std::string EncryptDescription(std::string_view sourcePath) {
  namespace fs = std::filesystem;
  const size_t dot = sourcePath.rfind('.');
  const std::string destination =
      std::string(sourcePath.substr(0, dot == std::string_view::npos ? sourcePath.size() : dot)) +
      ".vtld";
  // An enciphered file enciphered again in its own place would be lost.
  if (EndsWith(sourcePath, ".vtld") || destination == sourcePath) {
    return "File already enciphered !";
  }
  std::error_code ec;
  // A directory, device or pipe is no description: reading one fails or never ends.
  if (!fs::is_regular_file(fs::status(NativePath(sourcePath), ec))) return "Cannot open file ";
  const auto plain = ReadFileBytes(sourcePath);
  if (!plain) return "Cannot open file ";
  // Written beside the destination and renamed into its place, so that a link standing
  // there is replaced, never written through, and no half-written file is left.
  const fs::path target(NativePath(destination));
  fs::path staging = target;
  staging += ".part";
  fs::remove(staging, ec);
  {
    std::ofstream out(staging, std::ios::binary | std::ios::trunc);
    if (!out) return "Cannot open file ";
    out << EncipherText(*plain);
    out.close();
    if (!out) {
      fs::remove(staging, ec);
      return "Cannot open file ";
    }
  }
  fs::rename(staging, target, ec);
  if (ec) {
    fs::remove(staging, ec);
    return "Cannot open file ";
  }
  return "Cryptage successful !";
}

std::optional<std::string> DecryptDescription(std::string_view sourcePath, std::string& errorText) {
  if (!EndsWith(sourcePath, ".vtld") && !EndsWith(sourcePath, ".vtl")) {
    errorText = "Bad source file extension !";
    return std::nullopt;
  }
  if (IsNonRegularFile(sourcePath)) {
    errorText = "Not a regular file !";
    return std::nullopt;
  }
  const auto enciphered = ReadFileBytes(sourcePath);
  if (!enciphered) throw RuntimeError::FileNotFound();
  std::optional<std::string> plain = DecipherText(*enciphered);
  if (!plain) errorText = "Incorrect file !";
  return plain;
}

}  // namespace vantrel
