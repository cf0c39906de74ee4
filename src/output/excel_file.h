#pragma once
// A writer of Excel 2.x worksheets (BIFF2): a start record, the built-in number formats,
// then column widths, row heights and cells in any order, and an end record. It knows
// nothing of traces. Rows and columns are 1-based on input.
//
// Failures are results, not exceptions: each operation traps its own failure and reports
// it through its result (opening, the formats and the default row height through a notice
// for the user, see TakeNotices). Two exceptions are kept on purpose: a label longer than
// 255 characters throws Overflow before anything is written, and CloseFile lets its failure
// through.
//
// The file is opened for reading and writing without truncation: a shorter new file leaves
// the tail of an old one behind its end record. Records go through one buffered stream, so
// a cell costs no system call of its own.

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include <utility>
#include <vector>

#include "vantrel/export_files.h"

namespace vantrel {

class ExcelFile {
 public:
  explicit ExcelFile(ExportFiles& files) : files_(files) {}
  ~ExcelFile();
  ExcelFile(const ExcelFile&) = delete;
  ExcelFile& operator=(const ExcelFile&) = delete;

  // Opens (or creates) the file, writes the start record and the default formats. A failure
  // leaves a notice.
  void OpenFile(std::string_view fileName);
  // Writes the end record and closes the file; throws RuntimeError when that fails.
  void CloseFile();

  // A text cell; the bytes of `text` are written as they are (Windows-1252).
  bool EWriteString(int16_t row, int16_t column, std::string_view text);
  // An integer cell with format 1 ("0"); fails for values outside -32768..32767.
  bool EWriteInteger(int16_t row, int16_t column, int32_t value);
  // A number cell with format `formatIndex` of the built-in list.
  bool EWriteDouble(int16_t row, int16_t column, double value, int16_t formatIndex);
  // Width in characters of columns first..last; fails from 128 characters up.
  bool SetColumnWidth(uint8_t firstColumn, uint8_t lastColumn, int16_t width);
  // 0 when written, nothing on failure (which leaves a notice).
  std::optional<int16_t> SetDefaultRowHeight(int16_t points);
  // 0 when written, else the failure's error number. Rows above 32767 are stored as
  // row - 65536 without the usual minus one, as readers of the format expect.
  int32_t SetRowHeight(int32_t row, int16_t points);

  bool IsOpen() const { return file_ != nullptr; }
  // The text of the last failed cell, column-width or row-height write.
  const std::string& LastError() const { return lastError_; }
  // What the user is to be told of failures since the last call, in order (shown in message
  // boxes titled "Vantrel").
  std::vector<std::string> TakeNotices() { return std::exchange(notices_, {}); }

  // The built-in number formats, index 0 to 23.
  static constexpr int kFormatCount = 24;
  static std::string_view DefaultFormat(int index);

 private:
  void WriteDefaultFormats();
  void Put(const void* bytes, size_t count);
  void PutRecordHeader(uint16_t id, uint16_t length);
  void PutCellHeader(uint16_t id, uint16_t length, int16_t row, int16_t column, uint8_t format);

  ExportFiles& files_;
  std::vector<std::string> notices_;
  std::FILE* file_ = nullptr;
  std::string lastError_;
};

}  // namespace vantrel
