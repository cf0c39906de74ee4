// The symbol-file reader on arbitrary files: every symbol it keeps is found under its key.
#include "fuzz_support.h"
#include "symbols/symbol_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  const std::string path = fuzz::WriteInput("symbols.sym", fuzz::AsText(data, size));
  const cSymbol symbols = ReadSymbolFile(path);
  for (int32_t position = 1; position <= symbols.Count(); ++position) {
    const colSymbols* found = symbols.Find(symbols.KeyAt(position));
    fuzz::Check(found == &symbols.Item(position), "each symbol is found under its own key");
  }
  return 0;
}
