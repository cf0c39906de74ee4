// The value-text reader on arbitrary files, under the key the first byte picks: every text
// it keeps is found under its key, and nothing is kept when the key never appears.
#include "fuzz_support.h"
#include "symbols/value_text_file.h"
#include "symbols/value_texts.h"
#include "vantrel/scripted_prompts.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  if (size == 0) return 0;
  const char* key = (data[0] & 1) != 0 ? "PMP1" : "TNK2";
  const std::string_view text = fuzz::AsText(data + 1, size - 1);
  const std::string path = fuzz::WriteInput("texts.txt", text);
  cValues values;
  ScriptedPrompts prompts;
  ReadValueTextFile(values, path, key, prompts);
  for (int32_t position = 1; position <= values.Count(); ++position) {
    fuzz::Check(values.Find(values.KeyAt(position)) == &values.Item(position),
                "each text is found under its own key");
  }
  if (text.find(key) == std::string_view::npos) {
    fuzz::Check(values.Count() == 0, "a file without the buffer's key gives no texts");
  }
  return 0;
}
