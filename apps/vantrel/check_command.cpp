#include "check_command.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "console_prompts.h"
#include "control/resource_paths.h"
#include "description/description_loader.h"
#include "description/field_types.h"
#include "description/user_buffer.h"
#include "event_log.h"
#include "platform/paths.h"
#include "symbols/symbol_file.h"
#include "symbols/value_text_file.h"
#include "vantrel/encoding.h"

namespace vantrel::cli {
namespace {

struct Loaded {
  TraceDescription description;
  cValues valueTexts;
  cSymbol symbols;
};

// The directory part of `path`, or "." for a bare file name.
std::string DirectoryOf(std::string_view path) {
  for (size_t i = path.size(); i > 0; --i) {
    if (IsSeparator(path[i - 1])) return std::string(path.substr(0, i - 1));
  }
  return ".";
}

bool Load(const CheckOptions& o, Loaded& out, std::string& error) {
  TraceDescription& d = out.description;
  if (HasUserBufferExtension(o.file)) {
    std::optional<UserBufferSimulation> simulation;
    return LoadUserBuffer(d, o.file, o.key.value_or(""), false, simulation, error);
  }
  ConsolePrompts prompts;
  DescriptionSources sources;
  // The description's own directory stands in for the control's directory.
  sources.textFileDirectories.push_back(o.projectPath);
  sources.textFileDirectories.push_back(DirectoryOf(o.file));
  for (const std::string& path : SplitResourcePath(o.resourcePath))
    sources.textFileDirectories.push_back(path);
  sources.readSymbolFile = [&] { out.symbols = ReadSymbolFile(o.symbols); };
  sources.readValueTextFile = [&](const std::string& path) {
    // Value-text files are gated by the buffer's key; without --key, the description's own.
    ReadValueTextFile(out.valueTexts, path, o.key.value_or(d.HeaderKeyText), prompts);
  };
  sources.prompts = &prompts;
  d.DescriptionFile = o.file;
  return LoadDescription(d, 16, sources, error);
}

std::string FieldTypeName(int16_t type) {
  return type >= 1 && type <= 6 ? FieldTypeWord(type) : "?";
}

std::string Utf8(std::string_view cp1252) {
  return Cp1252ToUtf8(cp1252);
}

std::string Json(const Loaded& l) {
  const TraceDescription& d = l.description;
  std::string j = "{";
  auto field = [&](const char* name, const std::string& value) {
    if (j.size() > 1) j += ',';
    ((j += '"') += name) += "\":";
    j += value;
  };
  auto number = [](int64_t v) { return std::to_string(v); };
  field("DescriptionFile", JsonString(d.DescriptionFile));
  field("HeaderApp", JsonString(d.HeaderApp));
  field("HeaderKeyText", JsonString(d.HeaderKeyText));
  field("DescVersion", number(d.DescVersion));
  field("CounterIndex", number(d.CounterIndex));
  field("RecordLength", number(d.RecordLength));
  field("StringIndex", JsonString(d.StringIndex));
  field("Title", JsonString(d.Title));
  field("DefaultColumnWidth", number(d.DefaultColumnWidth));
  field("InfoText", JsonString(d.InfoText));
  field("ColumnCount", number(d.ColumnCount));
  std::string columns = "[";
  for (size_t n = 0; n < d.Columns.size(); ++n) {
    const ColumnDef& c = d.Columns[n];
    if (!c.Defined) continue;
    if (columns.size() > 1) columns += ',';
    columns += "{\"Column\":" + number(static_cast<int64_t>(n)) +
               ",\"RegisterIndex\":" + number(c.RegisterIndex) +
               ",\"FieldType\":" + number(c.FieldType) + ",\"Position\":" + number(c.Position) +
               ",\"Width\":" + number(c.Width) + ",\"Caption\":" + JsonString(c.Caption) +
               ",\"DisplayCode\":" + JsonString(c.DisplayCode) +
               ",\"DefaultText\":" + JsonString(c.DefaultText) + ",\"Values\":[";
    for (size_t k = 0; k < c.Values.size() && k < c.ValueTexts.size(); ++k) {
      if (k > 0) columns += ',';
      columns += "[" + number(c.Values[k]) + "," + JsonString(c.ValueTexts[k]) + "]";
    }
    columns += "]}";
  }
  field("Columns", columns + "]");
  std::string texts = "{";
  for (int32_t i = 1; i <= l.valueTexts.Count(); ++i) {
    const cValue& v = l.valueTexts.Item(i);
    if (texts.size() > 1) texts += ',';
    texts += JsonString(l.valueTexts.KeyAt(i)) + ":{\"Value\":" + number(v.Value()) +
             ",\"Text\":" + JsonString(v.Text()) + ",\"Comment\":" + JsonString(v.Comment()) + "}";
  }
  field("ValueTexts", texts + "}");
  std::string symbols = "{";
  for (int32_t i = 1; i <= l.symbols.Count(); ++i) {
    const colSymbols& s = l.symbols.Item(i);
    if (symbols.size() > 1) symbols += ',';
    symbols += JsonString(l.symbols.KeyAt(i)) + ":{\"Name\":" + JsonString(s.Name()) +
               ",\"Comment\":" + JsonString(s.Comment()) + ",\"Addr\":" + number(s.Addr()) + "}";
  }
  field("Symbols", symbols + "}");
  return j + "}";
}

void PrintText(const Loaded& l) {
  const TraceDescription& d = l.description;
  std::printf("Description file : %s\n", Utf8(d.DescriptionFile).c_str());
  std::printf("App              : %s\n", Utf8(d.HeaderApp).c_str());
  std::printf("Key              : %s\n", Utf8(d.HeaderKeyText).c_str());
  std::printf("Version          : %d\n", d.DescVersion);
  std::printf("Counter index    : %d\n", d.CounterIndex);
  std::printf("Record length    : %d registers\n", d.RecordLength);
  std::printf("String index     : %s\n", Utf8(d.StringIndex).c_str());
  std::printf("Title            : %s\n", Utf8(d.Title).c_str());
  std::printf("Column width     : %d\n", d.DefaultColumnWidth);
  std::printf("Columns          : %d\n\n", d.ColumnCount);
  std::printf("%-4s %-4s %-6s %-4s %-6s %-20s %-6s %s\n", "Col", "Reg", "Type", "Pos", "Width",
              "Caption", "Code", "Values");
  for (size_t n = 0; n < d.Columns.size(); ++n) {
    const ColumnDef& c = d.Columns[n];
    if (!c.Defined) continue;
    std::string values;
    for (size_t k = 0; k < c.Values.size() && k < c.ValueTexts.size(); ++k)
      values += (k > 0 ? " " : "") + std::to_string(c.Values[k]) + ")" + c.ValueTexts[k];
    if (!c.DefaultText.empty())
      values += (values.empty() ? "" : " ") + ("default " + c.DefaultText);
    std::printf("%-4zu %-4d %-6s %-4d %-6d %-20s %-6s %s\n", n, c.RegisterIndex,
                FieldTypeName(c.FieldType).c_str(), c.Position, c.Width, Utf8(c.Caption).c_str(),
                Utf8(c.DisplayCode).c_str(), Utf8(values).c_str());
  }
  if (l.valueTexts.Count() > 0) {
    std::printf("\nValue texts (%d)\n", l.valueTexts.Count());
    for (int32_t i = 1; i <= l.valueTexts.Count(); ++i) {
      const cValue& v = l.valueTexts.Item(i);
      std::printf("  %-28s %s%s%s\n", Utf8(l.valueTexts.KeyAt(i)).c_str(), Utf8(v.Text()).c_str(),
                  v.Comment().empty() ? "" : "  ; ", Utf8(v.Comment()).c_str());
    }
  }
  if (l.symbols.Count() > 0) {
    std::printf("\nSymbols (%d)\n", l.symbols.Count());
    for (int32_t i = 1; i <= l.symbols.Count(); ++i) {
      const colSymbols& s = l.symbols.Item(i);
      std::printf("  %-10s %s%s%s\n", Utf8(l.symbols.KeyAt(i)).c_str(), Utf8(s.Name()).c_str(),
                  s.Comment().empty() ? "" : "  ;", Utf8(s.Comment()).c_str());
    }
  }
}

}  // namespace

int Check(const CheckOptions& o) {
  Loaded loaded;
  std::string error;
  if (!Load(o, loaded, error)) {
    if (o.json) {
      std::printf("{\"error\":%s}\n", JsonString(error).c_str());
    } else {
      // A message box shows a carriage return as a line break; so does a terminal here,
      // where a bare one would write the reason over the file name.
      std::string text = Utf8(error);
      std::replace(text.begin(), text.end(), '\r', '\n');
      std::fprintf(stderr, "%s\n", text.c_str());
    }
    return 1;
  }
  if (o.json) {
    std::printf("%s\n", Json(loaded).c_str());
  } else {
    PrintText(loaded);
  }
  return 0;
}

}  // namespace vantrel::cli
