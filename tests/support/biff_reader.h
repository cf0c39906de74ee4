#pragma once
// Reads an Excel 2.x worksheet back into its cells, for tests that check what an export
// wrote. Independent of the writer: it knows only the record layout.

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vantrel::testing {

struct BiffCell {
  uint16_t id = 0;  // 4 label, 3 number, 2 integer
  std::string text;
  double number = 0;
};

struct BiffSheet {
  std::map<std::pair<int, int>, BiffCell> cells;  // 1-based (row, column)
  std::map<int, int> widths;                      // 1-based column -> characters
  bool wellFormed = false;                        // BOF first, EOF last, lengths consistent

  const BiffCell* Cell(int row, int column) const {
    auto it = cells.find({row, column});
    return it == cells.end() ? nullptr : &it->second;
  }
};

// Reads the file up to the end record (bytes after it are ignored, as readers do).
inline BiffSheet ReadBiffFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  const std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
  auto le16 = [](const uint8_t* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); };
  BiffSheet sheet;
  for (size_t at = 0; at + 4 <= bytes.size();) {
    const uint16_t id = le16(&bytes[at]);
    const uint16_t length = le16(&bytes[at + 2]);
    if (at + 4 + length > bytes.size()) return sheet;
    const uint8_t* b = bytes.data() + at + 4;
    if ((id == 4 && length >= 8 && length == 8u + b[7]) || (id == 3 && length == 15) ||
        (id == 2 && length == 9)) {
      BiffCell& cell = sheet.cells[{le16(&b[0]) + 1, le16(&b[2]) + 1}];
      cell = {id, {}, 0};
      if (id == 4) cell.text.assign(b + 8, b + length);
      if (id == 3) std::memcpy(&cell.number, &b[7], 8);
      if (id == 2) cell.number = static_cast<int16_t>(le16(&b[7]));
    }
    if (id == 0x24 && length == 4) {
      for (int c = b[0]; c <= b[1]; ++c)
        sheet.widths[c + 1] = le16(&b[2]) / 256;
    }
    if (id == 0x0A) {
      sheet.wellFormed = le16(&bytes[0]) == 0x09;
      break;
    }
    at += 4 + length;
  }
  return sheet;
}

}  // namespace vantrel::testing
