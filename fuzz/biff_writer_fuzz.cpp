// The Excel 2.x writer fed arbitrary cells, widths and heights: its output is a sequence of
// well-formed records from the start record to the end record, and every cell it reported
// written is there with its value.
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>

#include "fuzz_support.h"
#include "output/excel_file.h"
#include "platform/runtime_error.h"
#include "support/biff_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  const std::string path = (fuzz::Scratch() / "out.xls").string();
  std::remove(path.c_str());
  std::map<std::pair<int, int>, std::string> labels;  // the last label written per cell
  {
    ExcelFile file(StandardExportFiles());
    file.OpenFile(path);
    fuzz::Check(file.IsOpen(), "the scratch file opens");
    size_t at = 0;
    auto byte = [&] { return at < size ? data[at++] : uint8_t{0}; };
    auto word = [&] { return static_cast<int16_t>(byte() | (byte() << 8)); };
    while (at < size) {
      const uint8_t op = byte();
      const int16_t row = static_cast<int16_t>(1 + byte() % 200);
      const int16_t column = static_cast<int16_t>(1 + byte() % 60);
      switch (op % 5) {
        case 0: {
          const size_t length = std::min<size_t>(byte(), size - at);
          const std::string text(reinterpret_cast<const char*>(data + at), length);
          at += length;
          try {
            if (file.EWriteString(row, column, text)) labels[{row, column}] = text;
          } catch (const RuntimeError&) {
            fuzz::Check(text.size() > 255, "only an over-long label throws");
          }
          break;
        }
        case 1:
          file.EWriteInteger(row, column, word());
          labels.erase({row, column});
          break;
        case 2: {
          double value = 0;
          uint8_t bytes[8];
          for (uint8_t& b : bytes)
            b = byte();
          std::memcpy(&value, bytes, sizeof value);
          file.EWriteDouble(row, column, value, static_cast<int16_t>(byte() % 30));
          labels.erase({row, column});
          break;
        }
        case 3:
          file.SetColumnWidth(byte(), byte(), word());
          break;
        case 4:
          file.SetRowHeight(word(), word());
          break;
      }
    }
    file.CloseFile();
  }
  const testing::BiffSheet sheet = testing::ReadBiffFile(path);
  fuzz::Check(sheet.wellFormed, "the output is well-formed records from BOF to EOF");
  for (const auto& [cell, text] : labels) {
    const testing::BiffCell* written = sheet.Cell(cell.first, cell.second);
    fuzz::Check(written != nullptr && written->id == 4 && written->text == text,
                "a written label reads back");
  }
  return 0;
}
