#include "decoding/record_decoder.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "decoding/cell_reading.h"
#include "decoding/field_readers.h"
#include "platform/date_serial.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace vantrel {
namespace {

constexpr int16_t kBit = 1;
constexpr int16_t kNible = 2;
constexpr int16_t kByte = 3;
constexpr int16_t kWord = 4;
constexpr int16_t kLong = 5;
constexpr int16_t kStrg = 6;

constexpr int64_t kTwoTo32 = 4294967296LL;

int64_t Unsigned(int32_t value) {
  return value < 0 ? value + kTwoTo32 : value;
}

std::string Hex(int64_t value) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  char digits[16];
  char* first = digits + sizeof digits;
  auto u = static_cast<uint64_t>(value);
  do {
    *--first = kDigits[u & 0xF];
    u >>= 4;
  } while (u != 0);
  return std::string(first, digits + sizeof digits);
}

// Hexadecimal digits of `value`, zero-padded to at least `width`.
void AssignHex(std::string& out, uint64_t value, size_t width) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  char digits[16];
  char* first = digits + sizeof digits;
  do {
    *--first = kDigits[value & 0xF];
    value >>= 4;
  } while (value != 0);
  while (static_cast<size_t>(digits + sizeof digits - first) < width)
    *--first = '0';
  out.assign(first, digits + sizeof digits);
}

// The leading decimal digits of a display code: decimals or a character count.
int LeadingNumber(std::string_view code) {
  int n = 0;
  for (char c : code) {
    if (c < '0' || c > '9') break;
    n = n * 10 + (c - '0');
    if (n > 99) break;
  }
  return n;
}

void AppendDecimal(std::string& out, int64_t value) {
  char digits[24];
  const auto result = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, result.ptr);
}

// The value (in "<" ">" unless plain) when no text is found for it.
void AssignValueItself(std::string& out, int64_t value, bool plain) {
  out.clear();
  if (!plain) out += '<';
  AppendDecimal(out, value);
  if (!plain) out += '>';
}

void AssignColumnText(std::string& out, const ColumnDef& column, int64_t value, bool plain) {
  for (size_t i = 0; i < column.Values.size(); ++i) {
    if (column.Values[i] == value) {
      out = column.ValueTexts[i];
      return;
    }
  }
  if (!column.DefaultText.empty()) {
    out = column.DefaultText;
    return;
  }
  AssignValueItself(out, value, plain);
}

void AssignDecimalText(std::string& out, int64_t value, int decimals, char decimalSeparator) {
  // Digits of the magnitude, then the text built in a local buffer and assigned once; a value
  // with more decimals than the buffer holds is padded in the string itself.
  char digits[24];
  const uint64_t magnitude =
      value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
  const auto end = std::to_chars(digits, digits + sizeof digits, magnitude).ptr;
  const auto count = static_cast<size_t>(end - digits);
  const auto places = static_cast<size_t>(std::max(decimals, 0));
  char text[64];
  char* o = text;
  if (value < 0) {
    *o++ = '-';
  } else if (decimals <= 0) {
    *o++ = ' ';  // a leading blank before a non-negative value without decimals
  }
  if (decimals <= 0) {
    o = std::copy(digits, end, o);
  } else if (count > places) {
    // One digit at least before the separator.
    o = std::copy(digits, digits + (count - places), o);
    *o++ = decimalSeparator;
    o = std::copy(digits + (count - places), end, o);
  } else if (places < sizeof text - 4) {
    *o++ = '0';
    *o++ = decimalSeparator;
    o = std::fill_n(o, places - count, '0');
    o = std::copy(digits, end, o);
  } else {
    out.assign(text, o);
    (out += '0') += decimalSeparator;
    out.append(places - count, '0');
    out.append(digits, count);
    return;
  }
  out.assign(text, o);
}

// A comparison of short texts that the compiler keeps inline.
bool Same(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i]) return false;
  }
  return true;
}

void AssignDecimal(std::string& out, int64_t value) {
  out.clear();
  AppendDecimal(out, value);
}

// One pass over one record: the columns in order, each leaving its cell in the record.
class RecordPass {
 public:
  RecordPass(const DecodingTables& tables, std::span<const int32_t> registers, size_t first,
             DecodingContext& context, DecodedRecord& out, std::string& display,
             std::string& comment, std::string& key, std::string& scratch)
      : tables_(tables),
        registers_(registers),
        first_(first),
        context_(context),
        out_(out),
        sink_(out.readerErrors),
        display_(display),
        comment_(comment),
        key_(key),
        scratch_(scratch) {
    // A record starts with nothing carried over from the previous one.
    display_.clear();
  }

  // Whether the register at `offset` from the record's first lies within the block.
  bool Holds(int64_t offset) const {
    const int64_t index = static_cast<int64_t>(first_) + offset;
    return index >= 0 && index < static_cast<int64_t>(registers_.size());
  }

  void DecodeColumn(ColumnPlan& plan, const ColumnDef& column) {
    plan_ = &plan;
    comment_.clear();
    value_ = CellValue::Text();
    decimalCell_ = false;
    try {
      const int32_t reg = Register(column.RegisterIndex);
      switch (column.FieldType) {
        case kBit:
          DecodeBit(column, reg);
          break;
        case kNible:
        case kByte:
        case kWord:
          DecodePart(column, reg);
          break;
        case kLong:
          DecodeLong(column, reg);
          break;
        case kStrg:
          DecodeString(column);
          break;
        default:
          // Nothing decoded: the cell shows what the previous column showed.
          value_ = CellValue{};
          break;
      }
    } catch (const RuntimeError&) {
      // Past a symbol format the column keeps what it had and the record goes on.
      if (!out_.passesOverFailures) throw;
      decimalCell_ = false;
    }
    // A string column's raw value is the last register it read.
    const int64_t raw = column.FieldType == kStrg ? lastRegister_ : raw_;
    if (decimalCell_ &&
        DecimalReadingIsItsValue(value_.integer, value_.decimals, plan.dateColumn)) {
      out_.cells.AppendDecimal(display_, comment_, raw, value_);
      return;
    }
    CellReading reading;
    if (decimalCell_) {
      reading = ReadDecimalCell(display_, value_.integer, value_.decimals, tables_.decimalSeparator,
                                plan.dateColumn);
    } else if (value_.kind == ValueKind::Timestamp) {
      // The text of a stamp is a date or a time, never a number; its serial is known.
      if (plan.dateColumn) reading.serial = value_.real;
    } else if (plan.readingKnown && Same(display_, plan.readText)) {
      // Most columns show the same few texts record after record.
      reading = plan.reading;
    } else {
      reading = ReadCellText(display_, tables_.decimalSeparator, plan.dateColumn);
      plan.readText = display_;
      plan.reading = reading;
      plan.readingKnown = true;
    }
    out_.cells.Append(display_, comment_, raw, value_, reading);
  }

 private:
  // Collects a field reader's trapped error for the caller to report.
  class ReaderErrors : public ErrorSink {
   public:
    explicit ReaderErrors(std::vector<std::string>& errors) : errors_(errors) {}
    void ReportError(std::string_view text) override { errors_.emplace_back(text); }

   private:
    std::vector<std::string>& errors_;
  };

  int32_t Register(int64_t offset) {
    const int64_t index = static_cast<int64_t>(first_) + offset;
    if (!Holds(offset)) {
      // Past a symbol format the failed read is passed over: the last register read stays.
      if (out_.passesOverFailures) return lastRegister_;
      throw RuntimeError::SubscriptOutOfRange();
    }
    lastRegister_ = registers_[static_cast<size_t>(index)];
    return lastRegister_;
  }

  void SetDecimal(int64_t value, int decimals) {
    AssignDecimalText(display_, value, decimals, tables_.decimalSeparator);
    value_ = decimals > 0 ? CellValue::Decimal(value, static_cast<int16_t>(decimals))
                          : CellValue::Integer(value);
    decimalCell_ = true;
  }

  // The rendering shared by every field type for the value-list codes; false when the code
  // is not one of them.
  bool LookupByCode(const ColumnDef& column, int64_t value) {
    switch (plan_->last) {
      case 's':
        AssignColumnText(display_, column, value, false);
        return true;
      case 'S':
        AssignColumnText(display_, column, value, true);
        return true;
      case 'f':
        AssignValueText(value, false);
        return true;
      case 'F':
        AssignValueText(value, true);
        return true;
      default:
        return false;
    }
  }

  void AssignValueText(int64_t value, bool plain) {
    // The key is built in a buffer kept across columns: this runs for most cells.
    key_.clear();
    int32_t& application = context_.currentApplication;
    if (plan_->application) {
      if (value <= INT32_MAX && value >= INT32_MIN) {
        application = static_cast<int32_t>(value);
      } else if (!out_.passesOverFailures) {
        throw RuntimeError::Overflow();
      }  // else the application stays as it was and the lookup goes on
      AppendDecimal(key_, application);
      key_ += "_Application_0";
    } else {
      AppendDecimal(key_, application);
      key_ += plan_->keySuffix;
      AppendDecimal(key_, value);
    }
    if (const cValue* item = tables_.valueTexts.Find(key_)) {
      comment_ = item->Comment();
      display_ = item->Text();
      return;
    }
    AssignValueItself(display_, value, plain);
  }

  void DecodeBit(const ColumnDef& column, int32_t reg) {
    const int position = column.Position;
    int64_t value = Unsigned(reg);
    int bit = 1;  // a negative position leaves nothing to compare: the bit reads as set
    if (position >= 0) {
      if (position < 31) value %= int64_t{1} << (position + 1);
      bit = value > (int64_t{1} << std::min(position, 40)) - 1 ? 1 : 0;
    }
    if (!LookupByCode(column, bit)) {
      AssignDecimal(display_, bit);
      value_ = CellValue::Integer(bit);
      decimalCell_ = true;
    }
    raw_ = bit;
  }

  void DecodePart(const ColumnDef& column, int32_t reg) {
    const auto position = column.Position;
    int64_t part = 0;
    int binaryWidth = 4;
    int dialWidth = 1;
    if (column.FieldType == kNible) {
      part = ReadNible(position, reg, sink_);
    } else if (column.FieldType == kByte) {
      part = ReadByte(position, reg, sink_);
      binaryWidth = 8;
      dialWidth = 2;
    } else {
      part = Read2Bytes(position, reg, sink_);
      binaryWidth = 16;
      dialWidth = 4;
    }
    switch (plan_->last) {
      case 'd':
        if (plan_->signMarker && column.FieldType == kByte && part > 127) part -= 256;
        if (plan_->signMarker && column.FieldType == kWord && part > 32767) part -= 65536;
        SetDecimal(part, plan_->decimals);
        break;
      case 'h':
        // A nibble's one digit, a byte's two, a word's four.
        AssignHex(display_, static_cast<uint64_t>(part), static_cast<size_t>(dialWidth));
        break;
      case 'a':
        display_ =
            ReadASCII(static_cast<int16_t>(column.FieldType == kWord ? 2 : 1), part, true, sink_);
        break;
      case 'b':
        display_ = FormatBinary(static_cast<int32_t>(part), static_cast<int16_t>(binaryWidth));
        break;
      case 'p':
        display_ = FormatDialString(static_cast<int16_t>(dialWidth), Hex(part));
        break;
      case 'e':
        if (column.FieldType == kWord)
          display_ = FormatSlashedWord(static_cast<int32_t>(part), sink_);
        break;
      default:
        LookupByCode(column, part);
        break;
    }
    raw_ = part;
  }

  void DecodeSymbol(const ColumnDef& column, int32_t reg, int64_t working) {
    // From the first symbol format on, a failure no longer loses the record: the rest of
    // the record is decoded past it and the row is added.
    out_.passesOverFailures = true;
    try {
      switch (plan_->symbol) {
        case SymbolFormat::Address:
          display_ = ReadMedia(working, sink_);
          break;
        case SymbolFormat::Value: {
          const std::string media = ReadMedia(working, sink_);
          display_ = media.size() > 2 ? media.substr(2) : std::string();
          break;
        }
        case SymbolFormat::Member:
          AssignColumnText(display_, column, ReadByte(2, reg, sink_), false);
          break;
        case SymbolFormat::Name:
        case SymbolFormat::Note: {
          const bool name = plan_->symbol == SymbolFormat::Name;
          display_ = name ? "<Not found>" : "<No found>";
          if (const colSymbols* symbol = tables_.symbols.Find(ReadMedia(working, sink_))) {
            display_ = name ? symbol->Name() : symbol->Comment();
          }
          break;
        }
        default:
          break;
      }
    } catch (const RuntimeError&) {
    }
    raw_ = reg;
  }

  void DecodeLong(const ColumnDef& column, int32_t reg) {
    const int64_t working = plan_->signMarker ? reg : Unsigned(reg);
    if (plan_->symbol != SymbolFormat::None) {
      DecodeSymbol(column, reg, working);
      return;
    }
    raw_ = reg;
    if (plan_->stamp) {
      // The serial comes from the stamp's fields, as reading its text back would give it.
      if (const auto serial = AssignTimeValue(display_, plan_->stampShape, reg, tables_.clock))
        value_ = CellValue::Timestamp(*serial);
      return;
    }
    const int64_t word0 = Read2Bytes(0, reg, sink_);
    const int64_t word1 = Read2Bytes(1, reg, sink_);
    switch (plan_->last) {
      case 'd':
        SetDecimal(reg, plan_->decimals);
        break;
      case 'h':
        // Eight digits: word 1's, then word 0's.
        AssignHex(display_, static_cast<uint64_t>(word1 << 16 | word0), 8);
        raw_ = word1;
        break;
      case 'a':
        display_ = ReadASCII(static_cast<int16_t>(plan_->decimals == 0 ? 4 : plan_->decimals),
                             working, true, sink_);
        break;
      case 'b':
        display_ = FormatBinary(static_cast<int32_t>(word1), 16) + " " +
                   FormatBinary(static_cast<int32_t>(word0), 16);
        raw_ = word0;
        break;
      case 'p':
        display_ = FormatDialString(4, Hex(word1)) + FormatDialString(4, Hex(word0));
        raw_ = word0;
        break;
      default:
        LookupByCode(column, working);
        break;
    }
  }

  void DecodeString(const ColumnDef& column) {
    if (plan_->last == 'a') {
      // Built aside: a register outside the block leaves the text shown before.
      scratch_.clear();
      for (int i = 0; i <= column.ExtraRegisters; ++i) {
        const auto u = static_cast<uint32_t>(Register(column.RegisterIndex + i));
        for (int shift = 24; shift >= 0; shift -= 8) {
          const uint32_t code = (u >> shift) & 0xFFu;
          scratch_ += static_cast<char>(code < 32 ? 127 : code);
        }
      }
      const auto length = static_cast<size_t>(std::max(column.StringLength, 0));
      display_.assign(scratch_, 0, std::min(length, scratch_.size()));
    }
  }

  const DecodingTables& tables_;
  std::span<const int32_t> registers_;
  size_t first_;
  DecodingContext& context_;
  DecodedRecord& out_;
  ReaderErrors sink_;
  const ColumnPlan* plan_ = nullptr;
  int32_t lastRegister_ = 0;
  // The column's raw value; a column that decodes nothing keeps the previous one's.
  int64_t raw_ = 0;
  CellValue value_;
  // Whether display_ is the decimal rendering of value_.
  bool decimalCell_ = false;
  // Buffers kept by the decoder across records, so that decoding allocates nothing once they
  // have grown to a record's size.
  std::string& display_;
  std::string& comment_;
  std::string& key_;
  std::string& scratch_;
};

}  // namespace

std::string DecimalText(int64_t value, int decimals, char decimalSeparator) {
  std::string text;
  AssignDecimalText(text, value, decimals, decimalSeparator);
  return text;
}

std::string LookupColumnText(const ColumnDef& column, int64_t value, bool plain) {
  std::string text;
  AssignColumnText(text, column, value, plain);
  return text;
}

bool RecordDecoder::PlanFits() const {
  const TraceDescription& description = tables_.description;
  const int highest = std::min<int>(description.ColumnCount, 127);
  size_t k = 0;
  for (int number = 0; number <= highest; ++number) {
    const ColumnDef& column = description.Columns[static_cast<size_t>(number)];
    if (!column.Defined) continue;
    if (k == plan_.size()) return false;
    const ColumnPlan& plan = plan_[k++];
    // Only the value-text codes read the caption.
    if (plan.number != number || !Same(plan.code, column.DisplayCode) ||
        ((plan.last == 'f' || plan.last == 'F') && !Same(plan.caption, column.Caption))) {
      return false;
    }
  }
  return k == plan_.size();
}

void RecordDecoder::Plan() {
  plan_.clear();
  const TraceDescription& description = tables_.description;
  const int highest = std::min<int>(description.ColumnCount, 127);
  for (int number = 0; number <= highest; ++number) {
    const ColumnDef& column = description.Columns[static_cast<size_t>(number)];
    if (!column.Defined) continue;
    ColumnPlan& plan = plan_.emplace_back();
    const std::string_view code = column.DisplayCode;
    plan.number = number;
    plan.code = code;
    plan.caption = column.Caption;
    plan.keySuffix.push_back('_');
    plan.keySuffix.append(column.Caption);
    plan.keySuffix.push_back('_');
    plan.last = code.empty() ? '\0' : code.back();
    plan.signMarker = code.find_first_of("sS") != std::string_view::npos;
    plan.decimals = static_cast<int16_t>(LeadingNumber(code));
    plan.dateColumn = IsDateKind(ExportKindOfCode(code));
    plan.application = IEquals(column.Caption, "Application");
    plan.stamp = !code.empty() && code[0] == 't';
    if (plan.stamp) plan.stampShape = StampShapeOf(code.substr(1));
    if (code.size() == 2 && code[0] == 'g') {
      static constexpr std::string_view kLetters = "avmsc";
      const size_t format = kLetters.find(code[1]);
      plan.symbol = format == std::string_view::npos ? SymbolFormat::Unknown
                                                     : static_cast<SymbolFormat>(format + 1);
    }
  }
}

bool RecordDecoder::Decode(std::span<const int32_t> registers, size_t first,
                           DecodingContext& context, DecodedRecord& out) {
  out.cells.Clear();
  out.readerErrors.clear();
  out.failed = false;
  out.failureNumber = 0;
  out.failureMessage.clear();
  out.passesOverFailures = false;
  if (!PlanFits()) Plan();
  const TraceDescription& description = tables_.description;
  try {
    RecordPass pass(tables_, registers, first, context, out, display_, comment_, key_, scratch_);
    bool firstColumn = true;
    for (ColumnPlan& plan : plan_) {
      const ColumnDef& column = description.Columns[static_cast<size_t>(plan.number)];
      // A short block after a counter area that claims a larger ring leaves thousands of
      // records past its end. Each fails at its first column; that one is found without
      // throwing, which would otherwise cost more than decoding a whole record.
      if (firstColumn && !pass.Holds(column.RegisterIndex)) {
        throw RuntimeError::SubscriptOutOfRange();
      }
      firstColumn = false;
      pass.DecodeColumn(plan, column);
    }
    return true;
  } catch (const RuntimeError& e) {
    out.failed = true;
    out.failureNumber = e.Number();
    out.failureMessage = e.Description();
    return false;
  }
}

}  // namespace vantrel
