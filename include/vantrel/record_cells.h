#pragma once
// The cells of a decoded record as values: per cell the typed value it was decoded to, the
// text the table shows, the raw register value and the value text's comment, and how the
// export and the graph read the cell. Those readings are decided once, when the cell is made,
// so that no consumer ever parses a shown text again.

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

enum class ValueKind : uint8_t {
  None,       // nothing decoded (a marker or status row, a column without a field type)
  Integer,    // `integer`
  Decimal,    // `integer` / 10^`decimals`
  Float,      // `real`
  Text,       // the cell's text itself
  Timestamp,  // `real`: the time shown, as a spreadsheet serial (days since 1899-12-30)
};

struct CellValue {
  ValueKind kind = ValueKind::None;
  int16_t decimals = 0;
  int64_t integer = 0;
  double real = 0;

  static CellValue Integer(int64_t value) { return {ValueKind::Integer, 0, value, 0}; }
  static CellValue Decimal(int64_t scaled, int16_t decimals) {
    return {ValueKind::Decimal, decimals, scaled, 0};
  }
  static CellValue Text() { return {ValueKind::Text, 0, 0, 0}; }
  static CellValue Timestamp(double serial) { return {ValueKind::Timestamp, 0, 0, serial}; }
};

// How the export and the graph read a cell's text.
struct CellReading {
  // The whole text as a number (the table's decimal separator, blanks around it allowed).
  std::optional<double> number;
  // The graph's value: the number as the graph has always read it, 0 for any other text.
  double plot = 0;
  // For a cell of a date or time column: the text as a spreadsheet serial.
  std::optional<double> serial;
};

// A row of cells, packed: the texts back to back in one buffer, the comments in another, the
// rest in one record of 32 bytes per cell. Assigning one row to another reuses its buffers, so
// a table at its row limit appends rows without allocating.
class CellRow {
 public:
  size_t Size() const { return cells_.size(); }
  bool Empty() const { return cells_.empty(); }
  void Clear();
  // Drops cells from the end, or adds empty ones.
  void Resize(size_t cells);
  void Reserve(size_t cells);

  void Append(std::string_view text, std::string_view comment, int64_t raw, const CellValue& value,
              const CellReading& reading);
  // The same for an integer or decimal value (at most 22 decimals) whose number is the value
  // itself: its text is its decimal rendering (see ReadDecimalCell).
  void AppendDecimal(std::string_view text, std::string_view comment, int64_t raw,
                     const CellValue& value);

  std::string_view Text(size_t i) const;
  std::string_view Comment(size_t i) const;
  int64_t Raw(size_t i) const;
  CellValue Value(size_t i) const;
  CellReading Reading(size_t i) const;
  std::optional<double> Number(size_t i) const;
  double Plot(size_t i) const;
  std::optional<double> Serial(size_t i) const;

  // Replaces the text of cell `i`; its value and readings stay.
  void SetText(size_t i, std::string_view text);
  // Every text and comment empty; values and readings of nothing.
  void ClearCells();

 private:
  enum Flags : uint8_t {
    kNumber = 1,         // has a number: the payload's bits (a text), or in `aux`
    kNumberInAux = 2,    // the number is `aux`
    kNumberOfValue = 4,  // the number is the integer or decimal value itself
    kSerial = 8,         // `aux` is the serial
    kPlot = 16,          // `aux` is the graph's value, where it is not the number
    kExtra = 32,         // raw value and readings are kept in `extras_`
  };
  struct Cell {
    uint32_t textEnd = 0;
    uint32_t commentEnd = 0;
    int32_t raw = 0;
    ValueKind kind = ValueKind::None;
    uint8_t flags = 0;
    int16_t decimals = 0;
    // The value's integer, the bits of its real number (Float, Timestamp), or the bits of a
    // text's number.
    int64_t payload = 0;
    double aux = 0;
  };
  // What does not fit a cell's record: a raw value beyond 32 bits, or more readings than its
  // one spare number holds. No decoded cell needs it.
  struct Extra {
    size_t cell = 0;
    int64_t raw = 0;
    CellReading reading;
  };

  // Appends the texts and a cell record for them, to be filled in.
  Cell& NewCell(std::string_view text, std::string_view comment);
  uint32_t TextBegin(size_t i) const { return i == 0 ? 0 : cells_[i - 1].textEnd; }
  uint32_t CommentBegin(size_t i) const { return i == 0 ? 0 : cells_[i - 1].commentEnd; }
  const Extra& ExtraOf(size_t i) const;
  [[noreturn]] static void TooLong();
  void AppendWideDecimal(std::string_view text, std::string_view comment, int64_t raw,
                         const CellValue& value);

  std::string texts_;
  std::string comments_;
  std::vector<Cell> cells_;
  std::vector<Extra> extras_;
};

inline CellRow::Cell& CellRow::NewCell(std::string_view text, std::string_view comment) {
  if (texts_.size() + text.size() > UINT32_MAX || comments_.size() + comment.size() > UINT32_MAX)
    TooLong();
  texts_ += text;
  if (!comment.empty()) comments_ += comment;
  Cell& cell = cells_.emplace_back();
  cell.textEnd = static_cast<uint32_t>(texts_.size());
  cell.commentEnd = static_cast<uint32_t>(comments_.size());
  return cell;
}

inline void CellRow::AppendDecimal(std::string_view text, std::string_view comment, int64_t raw,
                                   const CellValue& value) {
  if (raw < INT32_MIN || raw > INT32_MAX) {
    AppendWideDecimal(text, comment, raw, value);
    return;
  }
  Cell& cell = NewCell(text, comment);
  cell.raw = static_cast<int32_t>(raw);
  cell.kind = value.kind;
  cell.flags = kNumber | kNumberOfValue;
  cell.decimals = value.decimals;
  cell.payload = value.integer;
}

}  // namespace vantrel
