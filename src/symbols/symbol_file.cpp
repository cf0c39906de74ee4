#include "symbols/symbol_file.h"

#include <optional>
#include <vector>

#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "platform/text_file.h"

namespace vantrel {
namespace {

std::vector<std::string_view> SplitAtBlanks(std::string_view line) {
  std::vector<std::string_view> words;
  size_t start = 0;
  for (;;) {
    const size_t blank = line.find(' ', start);
    words.push_back(line.substr(start, blank - start));
    if (blank == std::string_view::npos) break;
    start = blank + 1;
  }
  return words;
}

// The media of a media word, or nothing when the word is not one.
std::optional<std::string> MediaOf(std::string_view word) {
  for (const char* media : {"F", "I", "O", "R", "T", "C", "DB"}) {
    if (IEquals(word, media)) return std::string(media);
  }
  if (IEquals(word, "TEXT") || IEquals(word, "X")) return std::string("X");
  return std::nullopt;
}

void ReadSymbolLine(cSymbol& symbols, const std::string& prefix, std::string line) {
  std::string comment;
  if (const size_t semicolon = line.find(';'); semicolon != std::string::npos) {
    comment = line.substr(semicolon + 1);
    line.resize(semicolon);
  }
  const std::vector<std::string_view> words = SplitAtBlanks(line);
  if (words.size() < 3 || !IEquals(words[1], "EQU")) return;
  size_t i = 2;
  std::optional<std::string> media;
  for (; i < words.size(); ++i) {
    if (IEquals(words[i], "VOL") || IEquals(words[i], "RAM")) continue;
    media = MediaOf(TrimBlanks(words[i]));
    if (!media) return;
    break;
  }
  if (!media) return;
  for (++i; i < words.size(); ++i) {
    if (words[i].empty()) return;
    if (words[i].find('[') != std::string_view::npos) continue;
    const int16_t address = RoundToInt16(Val(words[i]));
    symbols.Add(*media, prefix + std::string(words[0]), comment, address);
    return;
  }
}

}  // namespace

cSymbol ReadSymbolFile(std::string_view symbFile) {
  cSymbol symbols;
  if (symbFile.empty() || !FileExists(symbFile)) return symbols;
  const auto lines = ReadTextLines(symbFile);
  if (!lines) return symbols;
  std::string prefix;
  try {
    for (std::string line : *lines) {
      for (char& c : line) {
        if (c == '\t') c = ' ';
      }
      if (line.size() < 3 || line[0] == ';') continue;
      if (IStartsWith(line, "$ENDGROUP")) {
        // Prefixes always end in "."; cutting after the last one keeps them whole, so group
        // prefixes accumulate until the end of the file.
        const size_t dot = prefix.rfind('.');
        prefix = dot == std::string::npos ? std::string() : prefix.substr(0, dot + 1);
      } else if (IStartsWith(line, "$GROUP")) {
        const std::string_view rest = TrimBlanks(std::string_view(line).substr(6));
        prefix += std::string(rest.substr(0, rest.find(' '))) + ".";
      } else {
        ReadSymbolLine(symbols, prefix, line);
      }
    }
  } catch (const RuntimeError&) {
    // an address that does not fit ends the reading
  }
  return symbols;
}

}  // namespace vantrel
