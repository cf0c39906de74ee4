#include "acquisition/string_columns.h"

#include <array>

#include "platform/numbers.h"
#include "platform/runtime_error.h"

namespace vantrel {
namespace {

constexpr int16_t kFieldString = 6;

// Lengths 0..3 of the header's string length table: the bytes of one header word, byte 0
// the least significant.
std::array<int32_t, 4> LengthTable(const TraceDescription& d, std::span<const int32_t> header) {
  std::array<int32_t, 4> table{};
  if (d.StringIndex.empty()) return table;
  const double index = Val(d.StringIndex);
  if (index < 0 || index >= static_cast<double>(header.size())) return table;
  const auto word = static_cast<uint32_t>(header[static_cast<size_t>(index)]);
  for (size_t i = 0; i < 4; ++i)
    table[i] = static_cast<int32_t>((word >> (8 * i)) & 0xFF);
  return table;
}

}  // namespace

void ResolveStringColumns(TraceDescription& d, std::span<const int32_t> header) {
  const std::array<int32_t, 4> table = LengthTable(d, header);
  int32_t correction = 0;
  for (ColumnDef& column : d.Columns) {
    if (!column.Defined) continue;
    column.RegisterIndex = static_cast<int16_t>(column.RegisterIndex + correction);
    if (column.FieldType != kFieldString) continue;
    const int32_t width = column.Width;
    column.StringLength = width >= 4 ? width : (width >= 0 ? table[static_cast<size_t>(width)] : 0);
    int32_t registers = (column.StringLength + 3) / 4;
    if (registers != 0) {
      registers -= 1;
      column.ExtraRegisters = static_cast<int16_t>(registers);
      correction += registers;
      d.RecordLength = static_cast<int16_t>(d.RecordLength + registers);
    } else {
      column.ExtraRegisters = 0;
    }
  }
}

}  // namespace vantrel
