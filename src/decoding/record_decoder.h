#pragma once
// One trace record to one table row: every defined column's field cut out of its register
// and turned into display text by the column's display code, with the raw values and the
// value-text comments collected alongside.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "control/module.h"

namespace vantrel {

// Decodes the record starting at `registers[first]` and appends it as a row. False when the
// record could not be decoded (the failure is shown in a message box; no row is added).
bool DecodeRecord(Module& m, std::span<const int32_t> registers, size_t first);

// Text of a value by the column's own value list: the first matching entry, else the
// default text, else the value (in "<" ">" unless `plain`).
std::string LookupColumnText(const ColumnDef& column, int64_t value, bool plain);

// Decimal text of a display: a leading blank before a non-negative value without decimals,
// or the value divided by 10^decimals with that many decimals.
std::string DecimalText(int64_t value, int decimals, char decimalSeparator);

}  // namespace vantrel
