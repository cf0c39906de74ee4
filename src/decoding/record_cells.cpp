#include "vantrel/record_cells.h"

#include <limits>

#include "platform/runtime_error.h"

namespace vantrel {
namespace {

bool IsReal(ValueKind kind) {
  return kind == ValueKind::Float || kind == ValueKind::Timestamp;
}

}  // namespace

void CellRow::Clear() {
  texts_.clear();
  comments_.clear();
  cells_.clear();
}

void CellRow::Resize(size_t cells) {
  if (cells < cells_.size()) {
    texts_.resize(cells == 0 ? 0 : cells_[cells - 1].textEnd);
    comments_.resize(cells == 0 ? 0 : cells_[cells - 1].commentEnd);
    cells_.resize(cells);
  }
  while (cells_.size() < cells)
    Append({}, {}, 0, {}, {});
}

void CellRow::Reserve(size_t cells) {
  cells_.reserve(cells);
}

void CellRow::Append(std::string_view text, std::string_view comment, int64_t raw,
                     const CellValue& value, const CellReading& reading) {
  if (texts_.size() + text.size() > std::numeric_limits<uint32_t>::max() ||
      comments_.size() + comment.size() > std::numeric_limits<uint32_t>::max()) {
    throw RuntimeError::OutOfMemory();
  }
  texts_ += text;
  if (!comment.empty()) comments_ += comment;
  Cell& cell = cells_.emplace_back();
  cell.textEnd = static_cast<uint32_t>(texts_.size());
  cell.commentEnd = static_cast<uint32_t>(comments_.size());
  cell.raw = raw;
  cell.kind = value.kind;
  cell.decimals = value.decimals;
  cell.payload = IsReal(value.kind) ? std::bit_cast<int64_t>(value.real) : value.integer;
  if (reading.number) {
    cell.flags |= kNumber;
    cell.number = *reading.number;
  }
  // A date text is never a number, so the serial and a graph value of its own never meet.
  if (reading.serial) {
    cell.flags |= kSerial;
    cell.aux = *reading.serial;
  } else if (reading.plot != (reading.number ? *reading.number : 0.0)) {
    cell.flags |= kPlot;
    cell.aux = reading.plot;
  }
}

std::string_view CellRow::Text(size_t i) const {
  const uint32_t begin = TextBegin(i);
  return std::string_view(texts_).substr(begin, cells_[i].textEnd - begin);
}

std::string_view CellRow::Comment(size_t i) const {
  const uint32_t begin = CommentBegin(i);
  return std::string_view(comments_).substr(begin, cells_[i].commentEnd - begin);
}

CellValue CellRow::Value(size_t i) const {
  const Cell& c = cells_[i];
  if (IsReal(c.kind)) return {c.kind, c.decimals, 0, std::bit_cast<double>(c.payload)};
  return {c.kind, c.decimals, c.payload, 0};
}

std::optional<double> CellRow::Number(size_t i) const {
  const Cell& c = cells_[i];
  if ((c.flags & kNumber) == 0) return std::nullopt;
  return c.number;
}

double CellRow::Plot(size_t i) const {
  const Cell& c = cells_[i];
  if ((c.flags & kPlot) != 0) return c.aux;
  return (c.flags & kNumber) != 0 ? c.number : 0.0;
}

std::optional<double> CellRow::Serial(size_t i) const {
  const Cell& c = cells_[i];
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
  for (Cell& cell : cells_)
    cell = Cell{};
}

}  // namespace vantrel
