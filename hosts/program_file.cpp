#include "vantrel/hosts/program_file.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <vector>

namespace vantrel::hosts {
namespace {

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(" \t\r");
  return text.substr(first, last - first + 1);
}

std::string Lower(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

template <typename T>
bool ParseInteger(std::string_view text, T& value) {
  text = Trim(text);
  if (text.empty()) return false;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size();
}

// Splits at runs of blanks, keeping a double-quoted word (with its blanks) as one word.
std::vector<std::string> Words(std::string_view text, std::string& error) {
  std::vector<std::string> words;
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] == ' ' || text[i] == '\t') {
      ++i;
      continue;
    }
    if (text[i] == '"') {
      const size_t close = text.find('"', i + 1);
      if (close == std::string_view::npos) {
        error = "a quote is not closed";
        return {};
      }
      words.emplace_back(text.substr(i + 1, close - i - 1));
      i = close + 1;
      continue;
    }
    const size_t end = std::min(text.find_first_of(" \t", i), text.size());
    words.emplace_back(text.substr(i, end - i));
    i = end;
  }
  return words;
}

std::optional<RegisterGenerator> ParseFields(std::string_view text, std::string& error) {
  std::vector<GeneratedField> fields;
  size_t start = 0;
  while (start <= text.size()) {
    const size_t bar = std::min(text.find('|', start), text.size());
    const std::string_view part = Trim(text.substr(start, bar - start));
    start = bar + 1;
    const size_t blank = part.find_first_of(" \t");
    const std::string_view place = part.substr(0, blank);
    const size_t colon = place.find(':');
    GeneratedField field;
    if (blank == std::string_view::npos || colon == std::string_view::npos ||
        !ParseInteger(place.substr(0, colon), field.shift) ||
        !ParseInteger(place.substr(colon + 1), field.width)) {
      error = "a field must read SHIFT:WIDTH GENERATOR, not '" + std::string(part) + "'";
      return std::nullopt;
    }
    if (field.shift < 0 || field.shift > 31 || field.width < 1 || field.shift + field.width > 32) {
      error = "field " + std::string(place) + " does not fit in 32 bits";
      return std::nullopt;
    }
    auto generator = ParseGenerator(part.substr(blank + 1), error);
    if (!generator) return std::nullopt;
    if (generator->kind == GeneratorKind::Fields) {
      error = "fields cannot be nested";
      return std::nullopt;
    }
    field.generator.push_back(std::move(*generator));
    fields.push_back(std::move(field));
  }
  return RegisterGenerator::Fields(std::move(fields));
}

// Number arguments of a generator, exactly `least` to `most` of them.
bool Arguments(const std::vector<std::string>& words, size_t least, size_t most,
               std::vector<int64_t>& values, std::string& error) {
  const size_t given = words.size() - 1;
  if (given < least || given > most) {
    error = words[0] + " takes " +
            (least == most ? std::to_string(least)
                           : std::to_string(least) + " or " + std::to_string(most)) +
            (most == 1 ? " number" : " numbers");
    return false;
  }
  for (size_t i = 1; i < words.size(); ++i) {
    int64_t value = 0;
    if (!ParseInteger(words[i], value)) {
      error = words[0] + ": '" + words[i] + "' is not a whole number";
      return false;
    }
    values.push_back(value);
  }
  return true;
}

struct Section {
  std::string name;
  struct Entry {
    std::string value;
    int line = 0;
    std::string spelling;  // the key as the file writes it
  };
  std::map<std::string, Entry> keys;  // by lower-case key
};

std::optional<std::vector<Section>> Sections(std::string_view text, std::string& error) {
  std::vector<Section> sections;
  int lineNumber = 0;
  size_t start = 0;
  while (start < text.size()) {
    const size_t newline = std::min(text.find('\n', start), text.size());
    const std::string_view line = Trim(text.substr(start, newline - start));
    start = newline + 1;
    ++lineNumber;
    const std::string where = "line " + std::to_string(lineNumber) + ": ";
    if (line.empty() || line[0] == ';' || line[0] == '#') continue;
    if (line[0] == '[') {
      if (line.back() != ']') {
        error = where + "a section name must end with ]";
        return std::nullopt;
      }
      const std::string name = Lower(Trim(line.substr(1, line.size() - 2)));
      if (name != "program" && name != "registers") {
        error = where + "unknown section [" + std::string(line.substr(1, line.size() - 2)) +
                "] (expected [Program] or [Registers])";
        return std::nullopt;
      }
      sections.push_back({name, {}});
      continue;
    }
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
      error = where + "expected KEY=VALUE";
      return std::nullopt;
    }
    if (sections.empty()) {
      error = where + "a key before the first section";
      return std::nullopt;
    }
    const std::string key = Lower(Trim(line.substr(0, equals)));
    const std::string spelling(Trim(line.substr(0, equals)));
    const Section::Entry entry{std::string(Trim(line.substr(equals + 1))), lineNumber, spelling};
    if (!sections.back().keys.emplace(key, entry).second) {
      error = where + "key " + spelling + " given twice";
      return std::nullopt;
    }
  }
  return sections;
}

bool ApplyProgramKey(ProgramFile& file, const std::string& key, const std::string& spelling,
                     const std::string& value, std::string& error) {
  TraceProgramConfig& c = file.program;
  auto number = [&](const char* name, auto& target, int64_t least, int64_t most) {
    int64_t parsed = 0;
    if (!ParseInteger(value, parsed) || parsed < least || parsed > most) {
      error = std::string(name) + " must be a whole number from " + std::to_string(least) + " to " +
              std::to_string(most) + ", not '" + value + "'";
      return false;
    }
    target = static_cast<std::remove_reference_t<decltype(target)>>(parsed);
    return true;
  };
  constexpr int64_t kInt32Max = std::numeric_limits<int32_t>::max();
  constexpr int64_t kInt32Min = std::numeric_limits<int32_t>::min();
  if (key == "format") {
    const std::string upper = value == "vtl1" ? "VTL1" : value == "vtl2" ? "VTL2" : value;
    if (upper != "VTL1" && upper != "VTL2") {
      error = "Format must be VTL1 or VTL2, not '" + value + "'";
      return false;
    }
    c.format = upper;
    return true;
  }
  if (key == "key") {
    if (value.empty() || value.size() > 4) {
      error = "Key must have 1 to 4 characters, not '" + value + "'";
      return false;
    }
    c.key = value;
    return true;
  }
  if (key == "buffer") {
    // R<register> for a buffer in registers, D<block> for one in a data block.
    const char kind = value.empty() ? '\0' : value[0];
    if ((kind != 'R' && kind != 'r' && kind != 'D' && kind != 'd') ||
        !ParseInteger(std::string_view(value).substr(1), c.bufferStart) || c.bufferStart < 0) {
      error = "Buffer must read R<register> or D<data block>, not '" + value + "'";
      return false;
    }
    c.dataBlock = kind == 'D' || kind == 'd';
    return true;
  }
  if (key == "version") return number("Version", c.version, kInt32Min, kInt32Max);
  if (key == "startregister") return number("StartRegister", c.startRegister, 0, 8191);
  if (key == "ringrecords") return number("RingRecords", c.ringRecords, 2, 32767);
  if (key == "counterindex") return number("CounterIndex", c.counterIndex, 0, 15);
  if (key == "counterstart") return number("CounterStart", c.counterStart, kInt32Min, kInt32Max);
  if (key == "exportindex") return number("ExportIndex", c.exportIndex, kInt32Min, kInt32Max);
  if (key == "stringlengths") return number("StringLengths", c.stringLengths, kInt32Min, kInt32Max);
  if (key == "recordinterval") return number("RecordInterval", file.recordIntervalMs, 1, 3600000);
  error = "unknown key " + spelling + " in [Program]";
  return false;
}

}  // namespace

std::optional<RegisterGenerator> ParseGenerator(std::string_view text, std::string& error) {
  text = Trim(text);
  const std::string kind = Lower(text.substr(0, text.find_first_of(" \t")));
  if (kind == "fields") return ParseFields(text.substr(kind.size()), error);
  std::vector<std::string> words = Words(text, error);
  if (words.empty()) {
    if (error.empty()) error = "a register needs a generator";
    return std::nullopt;
  }
  words[0] = kind;
  std::vector<int64_t> n;
  if (kind == "counter" && Arguments(words, 0, 0, n, error)) return RegisterGenerator::Counter();
  if (kind == "timestamp" && Arguments(words, 0, 0, n, error)) {
    return RegisterGenerator::TimeStamp();
  }
  if (kind == "sawtooth" && Arguments(words, 1, 2, n, error)) {
    if (n[0] < 1) {
      error = "sawtooth needs at least 1 step";
      return std::nullopt;
    }
    return RegisterGenerator::Sawtooth(n[0], n.size() > 1 ? n[1] : 0);
  }
  if (kind == "sine" && Arguments(words, 3, 3, n, error)) {
    if (n[2] < 1 || n[2] > std::numeric_limits<int32_t>::max()) {
      error = "sine needs a period of at least 1 record";
      return std::nullopt;
    }
    return RegisterGenerator::Sine(n[0], n[1], static_cast<int32_t>(n[2]));
  }
  if (kind == "random" && Arguments(words, 1, 1, n, error)) {
    if (n[0] < 1 || n[0] > 32) {
      error = "random takes 1 to 32 bits";
      return std::nullopt;
    }
    return RegisterGenerator::RandomBits(n[0]);
  }
  if (kind == "constant" && Arguments(words, 1, 1, n, error)) {
    return RegisterGenerator::Constant(n[0]);
  }
  if (kind == "text") {
    if (words.size() != 2 || words[1].empty() || words[1].size() > 4) {
      error = "text takes one word of 1 to 4 characters";
      return std::nullopt;
    }
    return RegisterGenerator::Text(words[1]);
  }
  if (error.empty()) {
    error = "unknown generator '" + words[0] +
            "' (counter, sawtooth, sine, random, timestamp, text, constant, fields)";
  }
  return std::nullopt;
}

std::optional<ProgramFile> ParseProgramFile(std::string_view text, std::string& error) {
  error.clear();
  const auto sections = Sections(text, error);
  if (!sections) return std::nullopt;
  ProgramFile file;
  std::map<int, RegisterGenerator> registers;
  for (const Section& section : *sections) {
    for (const auto& [key, entry] : section.keys) {
      const auto& [value, line, spelling] = entry;
      std::string problem;
      if (section.name == "program") {
        if (!ApplyProgramKey(file, key, spelling, value, problem)) {
          error = "line " + std::to_string(line) + ": " + problem;
          return std::nullopt;
        }
        continue;
      }
      int index = 0;
      if (!ParseInteger(key, index) || index < 0 || index > 4095) {
        error = "line " + std::to_string(line) + ": register keys are numbers from 0, not '" +
                spelling + "'";
        return std::nullopt;
      }
      auto generator = ParseGenerator(value, problem);
      if (!generator) {
        error = "line " + std::to_string(line) + ": register " + key + ": " + problem;
        return std::nullopt;
      }
      if (!registers.emplace(index, std::move(*generator)).second) {
        error = "line " + std::to_string(line) + ": register " + key + " given twice";
        return std::nullopt;
      }
    }
  }
  if (registers.empty()) {
    error = "no record registers: the [Registers] section needs 0=..., 1=... and so on";
    return std::nullopt;
  }
  int expected = 0;
  for (auto& [index, generator] : registers) {
    if (index != expected) {
      error = "register " + std::to_string(expected) + " is missing: registers are numbered " +
              "from 0 without gaps";
      return std::nullopt;
    }
    file.program.registers.push_back(std::move(generator));
    ++expected;
  }
  return file;
}

std::optional<ProgramFile> ReadProgramFile(const std::string& path, std::string& error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot read " + path;
    return std::nullopt;
  }
  std::ostringstream text;
  text << in.rdbuf();
  auto file = ParseProgramFile(text.str(), error);
  if (!file) error = path + ": " + error;
  return file;
}

}  // namespace vantrel::hosts
