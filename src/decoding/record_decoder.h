#pragma once
// One trace record to its cells: every defined column's field cut out of its register and
// turned into a typed value and display text by the column's display code, with its raw value
// and value-text comment. Decoding depends only on what it is given; it shows nothing and
// changes nothing but the decoding context.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "description/trace_description.h"
#include "symbols/symbol_collection.h"
#include "symbols/value_texts.h"
#include "vantrel/clock.h"
#include "vantrel/record_cells.h"

namespace vantrel {

// What decoding carries from one record to the next.
struct DecodingContext {
  // The application whose value texts the "f" columns show, set by "Application" columns.
  int32_t currentApplication = 0;
};

// A decoded record: one cell per defined trace column, in increasing column number.
struct DecodedRecord {
  CellRow cells;
  // Failures the field readers trapped ("Error in ReadByte function."), in order; the record
  // was decoded all the same.
  std::vector<std::string> readerErrors;
  // Set when the record could not be decoded: no row is made from it.
  bool failed = false;
  int failureNumber = 0;
  std::string failureMessage;
  // From a symbol column on, a failure no longer loses the record: whoever adds its row
  // passes over a failure to do so as well.
  bool passesOverFailures = false;
};

struct DecodingTables {
  const TraceDescription& description;
  const cSymbol& symbols;
  const cValues& valueTexts;
  const Clock& clock;
  char decimalSeparator = '.';
};

class RecordDecoder {
 public:
  explicit RecordDecoder(const DecodingTables& tables) : tables_(tables) {}

  // Decodes the record starting at `registers[first]` into `out` (whose buffers are reused).
  // False when it could not be decoded (out.failed and the failure set).
  bool Decode(std::span<const int32_t> registers, size_t first, DecodingContext& context,
              DecodedRecord& out);

 private:
  DecodingTables tables_;
  // Text buffers reused from one record to the next.
  std::string display_, comment_, key_;
};

// Text of a value by the column's own value list: the first matching entry, else the
// default text, else the value (in "<" ">" unless `plain`).
std::string LookupColumnText(const ColumnDef& column, int64_t value, bool plain);

// Decimal text of a display: a leading blank before a non-negative value without decimals,
// or the value divided by 10^decimals with that many decimals.
std::string DecimalText(int64_t value, int decimals, char decimalSeparator);

}  // namespace vantrel
