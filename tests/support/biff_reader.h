#pragma once
// Reads an Excel 2.x worksheet back into its records and cells, for tests that check what
// an export wrote. Independent of the writer: it knows only the record layout.

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantrel::testing {

struct BiffRecord {
  uint16_t id = 0;
  std::vector<uint8_t> body;
};

struct BiffCell {
  uint16_t id = 0;  // 4 label, 3 number, 2 integer
  uint8_t format = 0;
  std::string text;
  double number = 0;
};

struct BiffSheet {
  std::vector<BiffRecord> records;
  std::map<std::pair<int, int>, BiffCell> cells;  // 1-based (row, column)
  std::map<int, int> widths;                      // 1-based column -> characters
  bool wellFormed = false;                        // BOF first, EOF last, lengths consistent

  const BiffCell* Cell(int row, int column) const {
    auto it = cells.find({row, column});
    return it == cells.end() ? nullptr : &it->second;
  }
};

inline uint16_t Le16(const uint8_t* p) {
  return static_cast<uint16_t>(p[0] | (p[1] << 8));
}

// Parses `bytes` up to the end record (bytes after it are ignored, as readers do).
inline BiffSheet ParseBiff(const std::vector<uint8_t>& bytes) {
  BiffSheet sheet;
  size_t at = 0;
  bool ended = false;
  while (at + 4 <= bytes.size()) {
    BiffRecord record;
    record.id = Le16(&bytes[at]);
    const uint16_t length = Le16(&bytes[at + 2]);
    if (at + 4 + length > bytes.size()) return sheet;
    record.body.assign(bytes.begin() + static_cast<std::ptrdiff_t>(at + 4),
                       bytes.begin() + static_cast<std::ptrdiff_t>(at + 4 + length));
    at += 4 + length;
    const auto& b = record.body;
    if ((record.id == 4 && b.size() >= 8 && b.size() == 8u + b[7]) ||
        (record.id == 3 && b.size() == 15) || (record.id == 2 && b.size() == 9)) {
      BiffCell cell;
      cell.id = record.id;
      cell.format = static_cast<uint8_t>(b[5] & 0x3F);
      if (record.id == 4) cell.text.assign(b.begin() + 8, b.end());
      if (record.id == 3) std::memcpy(&cell.number, &b[7], 8);
      if (record.id == 2) cell.number = static_cast<int16_t>(Le16(&b[7]));
      sheet.cells[{Le16(&b[0]) + 1, Le16(&b[2]) + 1}] = cell;
    }
    if (record.id == 0x24 && b.size() == 4) {
      for (int c = b[0]; c <= b[1]; ++c)
        sheet.widths[c + 1] = Le16(&b[2]) / 256;
    }
    sheet.records.push_back(std::move(record));
    if (sheet.records.back().id == 0x0A) {
      ended = true;
      break;
    }
  }
  sheet.wellFormed = ended && !sheet.records.empty() && sheet.records.front().id == 0x09;
  return sheet;
}

inline BiffSheet ReadBiffFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  const std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
  return ParseBiff(bytes);
}

}  // namespace vantrel::testing
