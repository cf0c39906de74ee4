// The user buffer file on arbitrary bytes (enciphered first, or as they come), with and
// without simulation: a loaded buffer is consistent, a refusal says why.
#include "description/cipher.h"
#include "description/user_buffer.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  if (size == 0) return 0;
  const bool encipher = (data[0] & 1) != 0;
  const bool simulation = (data[0] & 2) != 0;
  const std::string_view body = fuzz::AsText(data + 1, size - 1);
  const std::string path =
      fuzz::WriteInput("buffer.vtlr", encipher ? EncipherText(body) : std::string(body));
  TraceDescription d;
  std::optional<UserBufferSimulation> simulated;
  std::string error;
  const bool loaded = LoadUserBuffer(d, path, "TNK2", simulation, simulated, error);
  fuzz::Check(loaded || !error.empty(), "a refused user buffer says why");
  fuzz::Check(fuzz::StrayFiles({"buffer.vtlr"}) == 0, "a load writes no file");
  if (loaded) {
    fuzz::Check(!simulated || simulation, "simulation settings only when simulating");
    for (const ColumnDef& column : d.Columns)
      fuzz::Check(column.Values.size() == column.ValueTexts.size(), "one text per value");
  }
  return 0;
}
