#include "decoding/cell_reading.h"

#include <cstdlib>
#include <string>

#include "platform/date_serial.h"
#include "platform/numbers.h"
#include "platform/text.h"

namespace vantrel {
namespace {

// Powers of ten that a double holds exactly.
constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int64_t kExactIntegerLimit = int64_t{1} << 53;

// A text of blanks, an optional minus and up to 15 decimal digits (the decimal renderings
// without decimals, most hexadecimal and dial texts): its value, exact in a double, is what
// both readings below give for it, unless the separator is one of those characters. Nothing
// for any other text.
std::optional<double> PlainInteger(std::string_view text, char separator) {
  if (separator == ' ' || separator == '-' || (separator >= '0' && separator <= '9'))
    return std::nullopt;
  size_t i = 0;
  while (i < text.size() && text[i] == ' ')
    ++i;
  const bool negative = i < text.size() && text[i] == '-';
  if (negative) ++i;
  const size_t digits = text.size() - i;
  if (digits == 0 || digits > 15) return std::nullopt;
  int64_t value = 0;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  const auto magnitude = static_cast<double>(value);
  return negative ? -magnitude : magnitude;
}

// Whether the text may be a whole number, decided without reading it: a number needs a
// decimal digit, or a "&H" / "&O" literal; without such a literal, nothing but blanks at either
// end, signs, digits, the separator and exponent letters.
bool MayBeNumber(std::string_view text, char separator) {
  size_t begin = 0;
  size_t end = text.size();
  while (begin < end && (text[begin] == ' ' || text[begin] == '\t'))
    ++begin;
  while (end > begin && (text[end - 1] == ' ' || text[end - 1] == '\t'))
    --end;
  bool digit = false;
  for (size_t i = begin; i < end; ++i) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      digit = true;
    } else if (c != '+' && c != '-' && c != separator && c != 'e' && c != 'E' && c != 'd' &&
               c != 'D') {
      // Not a decimal number; it may still hold a literal.
      return text.find('&', i) != std::string_view::npos;
    }
  }
  return digit;
}

// The graph's reading of a numeric text: as C reads it, with the table's separator as the
// point, so a "&H" literal reads 0 and a "D" exponent is not part of the number.
double GraphNumber(std::string_view text, char separator) {
  std::string normal(text);
  for (char& c : normal) {
    if (c == separator) c = '.';
  }
  return std::strtod(normal.c_str(), nullptr);
}

}  // namespace

ExportCellKind ExportKindOfCode(std::string_view code) {
  if (code.empty() || FoldCase(code[0]) != 't') return ExportCellKind::General;
  const char second = code.size() > 1 ? FoldCase(code[1]) : '\0';
  if (second == 'x') return ExportCellKind::Text;
  if (second == 'd') return ExportCellKind::Date;
  if (second == 'h') return ExportCellKind::Time;
  return ExportCellKind::DateTime;
}

CellReading ReadCellText(std::string_view text, char decimalSeparator, bool dateColumn) {
  CellReading reading;
  if (const auto integer = PlainInteger(text, decimalSeparator)) {
    reading.number = integer;
    reading.plot = *integer;
  } else if (MayBeNumber(text, decimalSeparator)) {
    reading.number = NumberValue(text, decimalSeparator);
    if (reading.number) reading.plot = GraphNumber(text, decimalSeparator);
  }
  if (dateColumn) reading.serial = DateSerialFromText(text);
  return reading;
}

void AppendTextCell(CellRow& cells, std::string_view text, char decimalSeparator, bool dateColumn) {
  cells.Append(text, {}, 0, text.empty() ? CellValue{} : CellValue::Text(),
               ReadCellText(text, decimalSeparator, dateColumn));
}

bool DecimalReadingIsItsValue(int64_t value, int decimals, bool dateColumn) {
  return !dateColumn && decimals <= 22 && value < kExactIntegerLimit && value > -kExactIntegerLimit;
}

CellReading ReadDecimalCell(std::string_view text, int64_t value, int decimals,
                            char decimalSeparator, bool dateColumn) {
  if (!DecimalReadingIsItsValue(value, decimals, dateColumn))
    return ReadCellText(text, decimalSeparator, dateColumn);
  // Both readings round the exact quotient to the nearest double, as reading the text does.
  const double number =
      decimals <= 0 ? static_cast<double>(value)
                    : static_cast<double>(value) / kExactPowersOfTen[static_cast<size_t>(decimals)];
  return {number, number, std::nullopt};
}

}  // namespace vantrel
