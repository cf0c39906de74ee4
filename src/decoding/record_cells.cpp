#include "vantrel/record_cells.h"

#include <limits>

#include "platform/runtime_error.h"

namespace vantrel {
namespace {

// Powers of ten that a double holds exactly.
constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool IsReal(ValueKind kind) {
  return kind == ValueKind::Float || kind == ValueKind::Timestamp;
}

bool IsTextKind(ValueKind kind) {
  return kind == ValueKind::None || kind == ValueKind::Text;
}

// The number of an integer or decimal value: its integer over 10^decimals.
double ValueNumber(int64_t integer, int16_t decimals) {
  if (decimals <= 0) return static_cast<double>(integer);
  return static_cast<double>(integer) / kExactPowersOfTen[static_cast<size_t>(decimals)];
}

bool SameBits(double a, double b) {
  return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b);
}

}  // namespace

void CellRow::Clear() {
  texts_.clear();
  comments_.clear();
  cells_.clear();
  extras_.clear();
}

void CellRow::Resize(size_t cells) {
  if (cells < cells_.size()) {
    texts_.resize(cells == 0 ? 0 : cells_[cells - 1].textEnd);
    comments_.resize(cells == 0 ? 0 : cells_[cells - 1].commentEnd);
    cells_.resize(cells);
    std::erase_if(extras_, [cells](const Extra& e) { return e.cell >= cells; });
  }
  while (cells_.size() < cells)
    Append({}, {}, 0, {}, {});
}

void CellRow::Reserve(size_t cells) {
  cells_.reserve(cells);
}

void CellRow::Append(std::string_view text, std::string_view comment, int64_t raw,
                     const CellValue& value, const CellReading& reading) {
  // The readings in the cell's record: a text's number in the payload, which its value leaves
  // free; an integer's or decimal's when it is the value's own; else one number in `aux`.
  uint8_t flags = 0;
  int64_t payload = IsReal(value.kind) ? std::bit_cast<int64_t>(value.real) : value.integer;
  double aux = 0;
  bool auxUsed = false;
  bool fits =
      raw >= std::numeric_limits<int32_t>::min() && raw <= std::numeric_limits<int32_t>::max();
  if (reading.number) {
    const double number = *reading.number;
    flags |= kNumber;
    if (IsTextKind(value.kind) && payload == 0) {
      payload = std::bit_cast<int64_t>(number);
    } else if ((value.kind == ValueKind::Integer || value.kind == ValueKind::Decimal) &&
               value.decimals <= 22 &&
               SameBits(ValueNumber(value.integer, value.decimals), number)) {
      flags |= kNumberOfValue;
    } else {
      flags |= kNumberInAux;
      aux = number;
      auxUsed = true;
    }
  }
  // A date text is never a number, so the serial and a graph value of its own never meet.
  if (reading.serial) {
    fits = fits && !auxUsed;
    flags |= kSerial;
    aux = *reading.serial;
  } else if (reading.plot != (reading.number ? *reading.number : 0.0)) {
    fits = fits && !auxUsed;
    flags |= kPlot;
    aux = reading.plot;
  }
  if (!fits) {
    CellReading kept = reading;
    if ((flags & kPlot) == 0) kept.plot = reading.number ? *reading.number : 0.0;
    extras_.push_back({cells_.size(), raw, kept});
    flags = kExtra;
    payload = IsReal(value.kind) ? std::bit_cast<int64_t>(value.real) : value.integer;
    aux = 0;
    raw = 0;
  }
  Cell& cell = NewCell(text, comment);
  cell.raw = static_cast<int32_t>(raw);
  cell.kind = value.kind;
  cell.flags = flags;
  cell.decimals = value.decimals;
  cell.payload = payload;
  cell.aux = aux;
}

void CellRow::AppendWideDecimal(std::string_view text, std::string_view comment, int64_t raw,
                                const CellValue& value) {
  const double number = ValueNumber(value.integer, value.decimals);
  Append(text, comment, raw, value, {number, number, std::nullopt});
}

void CellRow::TooLong() {
  throw RuntimeError::OutOfMemory();
}

const CellRow::Extra& CellRow::ExtraOf(size_t i) const {
  for (auto e = extras_.rbegin(); e != extras_.rend(); ++e) {
    if (e->cell == i) return *e;
  }
  throw RuntimeError::SubscriptOutOfRange();  // a cell marked kExtra always has one
}

std::string_view CellRow::Text(size_t i) const {
  const uint32_t begin = TextBegin(i);
  return std::string_view(texts_).substr(begin, cells_[i].textEnd - begin);
}

std::string_view CellRow::Comment(size_t i) const {
  const uint32_t begin = CommentBegin(i);
  return std::string_view(comments_).substr(begin, cells_[i].commentEnd - begin);
}

int64_t CellRow::Raw(size_t i) const {
  const Cell& c = cells_[i];
  return (c.flags & kExtra) != 0 ? ExtraOf(i).raw : c.raw;
}

CellValue CellRow::Value(size_t i) const {
  const Cell& c = cells_[i];
  if (IsReal(c.kind)) return {c.kind, c.decimals, 0, std::bit_cast<double>(c.payload)};
  const bool numberInPayload =
      (c.flags & (kNumber | kNumberInAux | kNumberOfValue)) == kNumber && IsTextKind(c.kind);
  return {c.kind, c.decimals, numberInPayload ? 0 : c.payload, 0};
}

std::optional<double> CellRow::Number(size_t i) const {
  const Cell& c = cells_[i];
  if ((c.flags & kExtra) != 0) return ExtraOf(i).reading.number;
  if ((c.flags & kNumber) == 0) return std::nullopt;
  if ((c.flags & kNumberOfValue) != 0) return ValueNumber(c.payload, c.decimals);
  if ((c.flags & kNumberInAux) != 0) return c.aux;
  return std::bit_cast<double>(c.payload);
}

double CellRow::Plot(size_t i) const {
  const Cell& c = cells_[i];
  if ((c.flags & kExtra) != 0) return ExtraOf(i).reading.plot;
  if ((c.flags & kPlot) != 0) return c.aux;
  return Number(i).value_or(0.0);
}

std::optional<double> CellRow::Serial(size_t i) const {
  const Cell& c = cells_[i];
  if ((c.flags & kExtra) != 0) return ExtraOf(i).reading.serial;
  if ((c.flags & kSerial) == 0) return std::nullopt;
  return c.aux;
}

CellReading CellRow::Reading(size_t i) const {
  return {Number(i), Plot(i), Serial(i)};
}

void CellRow::SetText(size_t i, std::string_view text) {
  const uint32_t begin = TextBegin(i);
  const uint32_t oldLength = cells_[i].textEnd - begin;
  texts_.replace(begin, oldLength, text);
  const auto delta = static_cast<int64_t>(text.size()) - static_cast<int64_t>(oldLength);
  for (size_t k = i; k < cells_.size(); ++k)
    cells_[k].textEnd = static_cast<uint32_t>(static_cast<int64_t>(cells_[k].textEnd) + delta);
}

void CellRow::ClearCells() {
  texts_.clear();
  comments_.clear();
  extras_.clear();
  for (Cell& cell : cells_)
    cell = Cell{};
}

}  // namespace vantrel
