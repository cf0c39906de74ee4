// The column-line parser on arbitrary register sections: every column it accepts is
// consistent, and a refusal says why.
#include "description/column_parser.h"
#include "description/profile_file.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  if (size == 0) return 0;
  const int registerNumber = data[0] % 4;
  const std::string text = "[REGISTER_" + std::to_string(registerNumber) + "]\r\n" +
                           std::string(fuzz::AsText(data + 1, size - 1));
  const ProfileFile file = ProfileFile::Parse(text);
  TraceDescription d;
  d.RecordLength = 8;
  std::string error;
  int symbolReads = 0;
  const bool parsed = ParseRegisterSection(
      d, file, "REGISTER_", registerNumber, [&] { ++symbolReads; }, error);
  fuzz::Check(parsed || !error.empty(), "a refused column says why");
  fuzz::Check(symbolReads <= 1, "the symbol file is read at most once");
  for (const ColumnDef& column : d.Columns) {
    fuzz::Check(column.Values.size() == column.ValueTexts.size(), "one text per listed value");
    fuzz::Check(column.Values.size() <= kMaxValueTexts, "value lists are bounded");
  }
  return 0;
}
