#include "description/column_parser.h"

#include "platform/numbers.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace vantrel {
namespace {

struct FieldKind {
  const char* prefix;
  int16_t type;
  int limit;  // positions accepted: below this; 0 when the position is not used
};

constexpr FieldKind kKinds[] = {{"Bit_", 1, 32}, {"Nibe", 2, 8}, {"Byte", 3, 4},
                                {"Word", 4, 2},  {"Long", 5, 0}, {"Strg", 6, 0}};

// Thrown for the limits that have their own message rather than "Reading error".
struct SectionFailure {
  std::string message;
};

// The value-text list of a "%s" or "%gm" column; false when it ends early (the column then
// stays undefined, the entries added so far stay).
bool ParseValueTexts(ColumnDef& column, int columnNumber, std::string_view rest) {
  column.DefaultText.clear();
  column.Values.clear();
  column.ValueTexts.clear();
  // The 2048th entry fails the load; it is not kept, so a table never exceeds 2047 entries.
  auto add = [&](double value, const std::string& text) {
    const int32_t rounded = RoundToInt32(value);
    if (column.Values.size() + 1 >= kMaxValueTexts) {
      throw SectionFailure{"Too many value with a string in culumn number " +
                           std::to_string(columnNumber) + "Read vtl file"};
    }
    column.Values.push_back(rounded);
    column.ValueTexts.push_back(text);
  };
  while (!rest.empty()) {
    const size_t backslash = rest.find('\\');
    const size_t close = rest.find(')');
    if (backslash == std::string_view::npos || close == std::string_view::npos) return false;
    if (close < backslash) throw RuntimeError::SubscriptOutOfRange();
    const size_t next = rest.find('\\', close + 1);
    const std::string text(TrimBlanks(rest.substr(close + 1, next - (close + 1))));
    if (close == backslash + 1) {
      column.DefaultText = text;
      rest = next == std::string_view::npos ? std::string_view{} : rest.substr(next);
      continue;
    }
    const std::string_view list = rest.substr(backslash + 1, close - backslash - 1);
    rest = next == std::string_view::npos ? std::string_view{} : TrimBlanks(rest.substr(next));
    size_t start = 0;
    for (;;) {
      const size_t blank = list.find(' ', start);
      const std::string_view item = list.substr(start, blank - start);
      if (const size_t dots = item.find(".."); dots != std::string_view::npos) {
        const double last = Val(item.substr(dots + 2));
        for (double v = Val(item.substr(0, dots)); v <= last; v += 1)
          add(v, text);
      } else {
        add(Val(item), text);
      }
      if (blank == std::string_view::npos) break;
      start = blank + 1;
    }
  }
  return true;
}

// One column line; returns without marking the column defined when the line is skipped.
void ParseColumnLine(TraceDescription& d, std::string_view line, int16_t registerNumber,
                     const std::function<void()>& readSymbolFile, const std::string& section) {
  if (!line.empty() && line.front() == ';') return;
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) throw RuntimeError::SubscriptOutOfRange();
  const std::string_view key = line.substr(0, equals);
  std::string_view value = line.substr(equals + 1);
  const int16_t position = RoundToInt16(Val(key.size() > 4 ? key.substr(4) : std::string_view{}));
  if (value.size() < 5) return;
  const size_t comma = value.find(',');
  if (comma == std::string_view::npos || comma == 0) return;
  const int16_t columnNumber = RoundToInt16(Val(value.substr(0, comma)));
  value = value.substr(comma + 1);

  const FieldKind* kind = nullptr;
  for (const FieldKind& k : kKinds) {
    if (IStartsWith(key, k.prefix)) kind = &k;
  }
  if (kind == nullptr) return;
  if (kind->limit > 0 && position >= kind->limit) return;
  if (columnNumber < 0 || columnNumber > 127) throw RuntimeError::SubscriptOutOfRange();
  ColumnDef& column = d.Columns[static_cast<size_t>(columnNumber)];
  column.Position = kind->limit > 0 ? position : int16_t{0};
  column.FieldType = kind->type;
  column.RegisterIndex = registerNumber;

  const size_t widthEnd = value.find(',');
  if (widthEnd == std::string_view::npos) return;
  column.Width =
      widthEnd == 0 ? d.DefaultColumnWidth : RoundToInt32(Val(value.substr(0, widthEnd)));
  value = value.substr(widthEnd + 1);

  const size_t captionEnd = value.find(',');
  if (captionEnd == std::string_view::npos) return;
  column.Caption = std::string(value.substr(0, captionEnd));
  value = TrimBlanks(value.substr(captionEnd + 1));

  const size_t percent = value.find('%');
  if (percent == std::string_view::npos) return;
  const size_t blank = value.find(' ');
  std::string_view rest;
  if (blank != std::string_view::npos && blank > percent + 1) {
    column.DisplayCode = std::string(value.substr(percent + 1, blank - percent - 1));
    rest = TrimBlanks(value.substr(blank + 1));
  } else {
    column.DisplayCode = std::string(value.substr(percent + 1));
  }
  if (!column.DisplayCode.empty() && FoldCase(column.DisplayCode[0]) == 'g' &&
      !d.SymbolFileLoaded) {
    d.SymbolFileLoaded = true;
    if (readSymbolFile) readSymbolFile();
  }
  const std::string code = ToLower(column.DisplayCode);
  if ((code == "gm" || code == "s") && !ParseValueTexts(column, columnNumber, rest)) return;
  d.ColumnCount = std::max(d.ColumnCount, columnNumber);
  if (d.ColumnCount > 127) throw SectionFailure{"Too many column, max = 127" + section};
  column.Defined = -1;
}

}  // namespace

bool ParseRegisterSection(TraceDescription& d, const ProfileFile& file, std::string_view prefix,
                          int registerNumber, const std::function<void()>& readSymbolFile,
                          std::string& errMsg) {
  const std::string section = std::string(prefix) + std::to_string(registerNumber);
  const ProfileFile::SectionLines read = file.ReadSectionLines(section);
  if (read.characters == 0) return true;
  if (read.characters == kSectionDoesNotFit) {
    errMsg = "Too many bytes in the section " + section;
    return false;
  }
  try {
    for (const std::string& line : read.lines) {
      ParseColumnLine(d, line, static_cast<int16_t>(registerNumber), readSymbolFile, section);
    }
    return true;
  } catch (const SectionFailure& failure) {
    errMsg = failure.message;
  } catch (const RuntimeError&) {
    errMsg = "Reading error in section " + section;
  }
  return false;
}

}  // namespace vantrel
