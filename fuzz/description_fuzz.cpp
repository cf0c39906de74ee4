// The description loader on arbitrary files: the first byte chooses whether the rest is
// enciphered first (so that the plain structure is explored) or taken as the file itself,
// and which header length is in force. A load writes no file (the description is deciphered
// in memory), and a loaded description is consistent.
#include "description/cipher.h"
#include "description/description_loader.h"
#include "fuzz_support.h"
#include "vantrel/scripted_prompts.h"

namespace {

void CheckColumns(const vantrel::TraceDescription& d) {
  using vantrel::fuzz::Check;
  Check(d.ColumnCount >= 0 && d.ColumnCount < 128, "column count within the table");
  for (const vantrel::ColumnDef& column : d.Columns) {
    Check(column.Values.size() == column.ValueTexts.size(), "one text per listed value");
    Check(column.ExtraRegisters >= 0, "string columns never read backwards");
    Check(column.Defined == 0 || (column.FieldType >= 1 && column.FieldType <= 6),
          "a defined column has a field type");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  if (size == 0) return 0;
  const bool encipher = (data[0] & 1) != 0;
  const int16_t headerLength = (data[0] & 2) != 0 ? 16 : 8;
  const std::string_view body = fuzz::AsText(data + 1, size - 1);
  const std::string path =
      fuzz::WriteInput("d.vtld", encipher ? EncipherText(body) : std::string(body));

  ScriptedPrompts prompts;
  DescriptionSources sources;
  sources.textFileDirectories = {fuzz::Scratch().string()};
  // Checked in the middle of the load too, so that a file written and removed again is seen.
  const auto nothingWritten = [] {
    fuzz::Check(fuzz::StrayFiles({"d.vtld"}) == 0, "a load writes no file");
  };
  sources.readSymbolFile = nothingWritten;
  sources.readValueTextFile = [&](const std::string&) { nothingWritten(); };
  sources.prompts = &prompts;
  TraceDescription d;
  d.DescriptionFile = path;
  std::string error;
  const bool loaded = LoadDescription(d, headerLength, sources, error);
  nothingWritten();
  fuzz::Check(loaded || !error.empty(), "a failed load says why");
  if (loaded) CheckColumns(d);
  return 0;
}
