// The decoded examples of the description-file reference: every row of its example tables
// (column lines, register values, the texts shown and the raw line) is decoded here by the
// column parser and the record decoder, so the reference shows what the code shows.

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "acquisition/string_columns.h"
#include "decoding/record_decoder.h"
#include "description/column_parser.h"
#include "description/profile_file.h"
#include "symbols/symbol_file.h"
#include "symbols/value_text_file.h"
#include "vantrel/manual_clock.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

const std::string kSource = VANTREL_SOURCE_DIR;
const std::string kReference = kSource + "/docs/description-files.md";
const std::string kSymbols = kSource + "/examples/reference/symbols/SYM1_symbols.sym";
const std::string kValueTexts = kSource + "/examples/reference/value-texts/TXT1_texts.txt";
constexpr const char* kValueTextKey = "TXT1";

struct Example {
  int line = 0;  // in the reference, for the failure message
  std::vector<std::string> columnLines;
  std::vector<int32_t> registers;
  std::vector<int32_t> header;  // empty, or 16 words with the string length table in word 12
  std::string shows;            // the texts of the columns, joined by "<br>"
  std::string raw;
};

std::string Trim(const std::string& text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> Split(const std::string& text, const std::string& separator) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (;;) {
    const size_t at = text.find(separator, start);
    parts.push_back(text.substr(start, at - start));
    if (at == std::string::npos) return parts;
    start = at + separator.size();
  }
}

// A table cell as the code sees it: code spans unwrapped, "␣" a blank, "␡" the character
// 127, "(empty)" nothing.
std::string CellText(const std::string& cell) {
  std::string out = Trim(cell);
  std::erase(out, '`');
  for (const auto& [from, to] :
       {std::pair<std::string, std::string>{"␣", " "}, {"␡", "\x7F"}, {"(empty)", ""}}) {
    for (size_t at = out.find(from); at != std::string::npos; at = out.find(from, at + to.size()))
      out.replace(at, from.size(), to);
  }
  return out;
}

int32_t Number(const std::string& text) {
  const int64_t value = std::stoll(text, nullptr, text.rfind("0x", 0) == 0 ? 16 : 10);
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

std::vector<int32_t> Numbers(const std::string& text) {
  std::vector<int32_t> values;
  std::istringstream words(text);
  for (std::string word; words >> word;)
    values.push_back(Number(word));
  return values;
}

// The rows of every table between "<!-- decoded-examples -->" and "<!-- /decoded-examples -->".
std::vector<Example> ReadExamples() {
  std::ifstream in(kReference);
  std::vector<Example> examples;
  bool inside = false;
  std::vector<std::string> names;
  int lineNumber = 0;
  for (std::string line; std::getline(in, line);) {
    ++lineNumber;
    if (line.find("<!-- decoded-examples -->") != std::string::npos) {
      inside = true;
      names.clear();
      continue;
    }
    if (line.find("<!-- /decoded-examples -->") != std::string::npos) inside = false;
    if (!inside || line.empty() || line.front() != '|') continue;
    std::vector<std::string> cells = Split(line.substr(1, line.rfind('|') - 1), "|");
    if (names.empty()) {
      for (const std::string& cell : cells)
        names.push_back(Trim(cell));
      continue;
    }
    if (cells.front().find("---") != std::string::npos) continue;
    Example e;
    e.line = lineNumber;
    for (size_t i = 0; i < cells.size() && i < names.size(); ++i) {
      const std::string text = CellText(cells[i]);
      if (names[i] == "Column line") {
        e.columnLines = Split(text, "<br>");
      } else if (names[i] == "Registers") {
        e.registers = Numbers(text);
      } else if (names[i] == "Word 12") {
        e.header.assign(16, 0);
        e.header[12] = Number(text);
      } else if (names[i] == "Shows") {
        e.shows = text;
      } else if (names[i] == "Raw line") {
        e.raw = text;
      }
    }
    examples.push_back(std::move(e));
  }
  return examples;
}

struct Decoded {
  std::string error;
  std::string shows;
  std::string raw;
};

Decoded Decode(const Example& e) {
  TraceDescription d;
  cSymbol symbols;
  cValues valueTexts;
  ScriptedPrompts prompts;
  d.DefaultColumnWidth = 900;
  if (!e.header.empty()) d.StringIndex = "12";
  ReadValueTextFile(valueTexts, kValueTexts, kValueTextKey, prompts);
  // The lines belong to [REGISTER_0] until a section header names the next register.
  std::string sections = "[REGISTER_0]\n";
  d.RecordLength = 1;
  for (const std::string& line : e.columnLines) {
    if (line.rfind("[REGISTER_", 0) == 0 && line != "[REGISTER_0]") ++d.RecordLength;
    sections += line + "\n";
  }
  Decoded out;
  const ProfileFile file = ProfileFile::Parse(sections);
  for (int n = 0; n < d.RecordLength; ++n) {
    if (!ParseRegisterSection(
            d, file, "REGISTER_", n, [&symbols] { symbols = ReadSymbolFile(kSymbols); },
            out.error)) {
      return out;
    }
  }
  ResolveStringColumns(d, e.header);
  const ManualClock clock;
  RecordDecoder decoder({d, symbols, valueTexts, clock});
  DecodingContext context;
  DecodedRecord record;
  if (!decoder.Decode(e.registers, 0, context, record)) {
    out.error = "the record was not decoded: " + record.failureMessage;
    return out;
  }
  for (size_t c = 0; c < record.cells.Size(); ++c) {
    out.shows += std::string(c > 0 ? "<br>" : "") + std::string(record.cells.Text(c));
    out.raw += std::string(c > 0 ? ";" : "") + std::to_string(record.cells.Raw(c));
  }
  return out;
}

TEST(DecodedExamples, EveryRowShowsWhatTheDecoderShows) {
  const std::vector<Example> examples = ReadExamples();
  // A reference without its tables (or with the markers lost) would check nothing.
  EXPECT_GE(examples.size(), 40u) << kReference;
  for (const Example& e : examples) {
    SCOPED_TRACE("description-files.md line " + std::to_string(e.line));
    ASSERT_FALSE(e.columnLines.empty());
    ASSERT_FALSE(e.registers.empty());
    const Decoded decoded = Decode(e);
    EXPECT_EQ(decoded.error, "");
    EXPECT_EQ(decoded.shows, e.shows);
    EXPECT_EQ(decoded.raw, e.raw);
  }
}

}  // namespace
}  // namespace vantrel
