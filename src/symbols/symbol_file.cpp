#include "symbols/symbol_file.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "platform/text_file.h"

namespace vantrel {
namespace {

bool IsMediaWord(std::string_view word) {
  for (const std::string_view media : {"F", "I", "O", "R", "T", "C", "DB"}) {
    if (IEquals(word, media)) return true;
  }
  return false;
}

// "<name> EQU <media> <address> ..." with the comment already cut off.
void ReadDefinition(cSymbol& symbols, std::string_view prefix, std::string_view line,
                    std::string_view comment) {
  // Words between single blanks: two blanks in a row give an empty word.
  const std::vector<std::string_view> words = SplitAt(line, ' ');
  if (words.size() < 2 || !IEquals(words[1], "EQU")) return;
  size_t i = 2;
  std::string_view media;
  for (;; ++i) {
    if (i >= words.size()) return;
    const std::string_view word = words[i];
    if (IEquals(word, "VOL") || IEquals(word, "RAM")) continue;
    if (IsMediaWord(word)) {
      media = TrimBlanks(word);
    } else if (IEquals(word, "TEXT") || IEquals(word, "X")) {
      media = "X";
    } else {
      return;
    }
    break;
  }
  for (++i; i < words.size(); ++i) {
    const std::string_view word = words[i];
    if (word.empty()) return;
    if (word.find('[') != std::string_view::npos) continue;  // an index such as "[10]"
    const int16_t address = RoundToInt16(Val(word));
    std::string name(prefix);
    name += words[0];
    symbols.Add(media, std::move(name), std::string(comment), address);
    return;
  }
}

}  // namespace

void ReadSymbolFile(cSymbol& symbols, std::string_view symbFile) {
  if (symbFile.empty() || !FileExists(symbFile)) return;
  const auto lines = ReadTextLines(symbFile);
  if (!lines) return;
  std::string prefix;
  try {
    for (std::string line : *lines) {
      std::replace(line.begin(), line.end(), '\t', ' ');
      if (line.size() < 3 || line[0] == ';') continue;
      if (IStartsWith(line, "$GROUP")) {
        const std::string_view rest = TrimBlanks(std::string_view(line).substr(6));
        prefix += rest.substr(0, rest.find(' '));
        prefix += '.';
      } else if (IStartsWith(line, "$ENDGROUP")) {
        // Cutting after the last "." leaves a prefix that ends in "." as it is: group
        // prefixes accumulate to the end of the file, as the tool's own reader does.
        const size_t dot = prefix.rfind('.');
        if (dot == std::string::npos) {
          prefix.clear();
        } else {
          prefix.resize(dot + 1);
        }
      } else {
        std::string_view definition = line;
        std::string_view comment;
        if (const size_t semicolon = definition.find(';'); semicolon != std::string_view::npos) {
          comment = definition.substr(semicolon + 1);
          definition = definition.substr(0, semicolon);
        }
        ReadDefinition(symbols, prefix, definition, comment);
      }
    }
  } catch (const RuntimeError&) {
    // An address that does not fit ends the reading; what was read stays.
  }
}

cSymbol ReadSymbolFile(std::string_view symbFile) {
  cSymbol symbols;
  ReadSymbolFile(symbols, symbFile);
  return symbols;
}

}  // namespace vantrel
