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

#include "decoding/field_readers.h"
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

// What a "g" display code shows of a symbol address.
enum class SymbolFormat : uint8_t { None, Address, Value, Member, Name, Note, Unknown };

// How a defined column renders its field, worked out from its display code and caption once
// per description instead of for every record.
struct ColumnPlan {
  int number = 0;
  // The display code and caption the plan was made from.
  std::string code;
  std::string caption;
  // "_<caption>_": the middle of the column's value-text keys.
  std::string keySuffix;
  char last = '\0';  // the code's last letter
  bool signMarker = false;
  int16_t decimals = 0;  // the code's leading number
  bool dateColumn = false;
  bool application = false;  // captioned "Application" (any case)
  bool stamp = false;        // a "t" code
  StampShape stampShape = StampShape::Both;
  SymbolFormat symbol = SymbolFormat::None;
  // The readings of the text the column showed last (read by ReadCellText).
  bool readingKnown = false;
  std::string readText;
  CellReading reading;
};

class RecordDecoder {
 public:
  explicit RecordDecoder(const DecodingTables& tables) : tables_(tables) {}

  // Decodes the record starting at `registers[first]` into `out` (whose buffers are reused).
  // False when it could not be decoded (out.failed and the failure set).
  bool Decode(std::span<const int32_t> registers, size_t first, DecodingContext& context,
              DecodedRecord& out);

 private:
  // Whether the plan was made from the description as it is now; checked for every record,
  // which costs a comparison of each column's code and caption.
  bool PlanFits() const;
  void Plan();

  DecodingTables tables_;
  std::vector<ColumnPlan> plan_;
  // Text buffers reused from one record to the next.
  std::string display_, comment_, key_, scratch_;
};

// Text of a value by the column's own value list: the first matching entry, else the
// default text, else the value (in "<" ">" unless `plain`).
std::string LookupColumnText(const ColumnDef& column, int64_t value, bool plain);

// Decimal text of a display: a leading blank before a non-negative value without decimals,
// or the value divided by 10^decimals with that many decimals.
std::string DecimalText(int64_t value, int decimals, char decimalSeparator);

}  // namespace vantrel
