#include "output/excel_file.h"

#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <limits>

#include "platform/export_file.h"
#include "platform/paths.h"
#include "platform/runtime_error.h"

namespace vantrel {
namespace {

constexpr uint16_t kBof = 0x0009;
constexpr uint16_t kEof = 0x000A;
constexpr uint16_t kFormatCountRecord = 0x001F;
constexpr uint16_t kFormatRecord = 0x001E;
constexpr uint16_t kColumnWidth = 0x0024;
constexpr uint16_t kDefaultRowHeight = 0x0025;
constexpr uint16_t kRow = 0x0008;
constexpr uint16_t kLabel = 0x0004;
constexpr uint16_t kInteger = 0x0002;
constexpr uint16_t kNumber = 0x0003;

constexpr size_t kStreamBuffer = 1 << 16;

constexpr std::array<std::string_view, ExcelFile::kFormatCount> kFormats = {"General",
                                                                            "0",
                                                                            "0.00",
                                                                            "#,##0",
                                                                            "#,##0.00",
                                                                            "",
                                                                            "",
                                                                            "",
                                                                            "",
                                                                            "0%",
                                                                            "0.00%",
                                                                            "0.00E+00",
                                                                            "dd/mm/yy",
                                                                            "dd/-mmm\\-yy",
                                                                            "dd/-mmm",
                                                                            "mmm\\-yy",
                                                                            "h:mm\\ AM/PM",
                                                                            "h:mm:ss\\ AM/PM",
                                                                            "hh:mm",
                                                                            "hh:mm:ss",
                                                                            "dd/mm/yy\\ hh:mm",
                                                                            "##0.0E+0",
                                                                            "mm:ss",
                                                                            "@"};

RuntimeError BadFileNumber() {
  return {52, "Bad file name or number"};
}

RuntimeError OpenFailure(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return {76, "Path not found"};
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return {70, "Permission denied"};
    default:
      return RuntimeError::PathFileAccess();
  }
}

// 16-bit fields are stored as their two's-complement pattern, little-endian.
void Store16(uint8_t* at, int32_t value) {
  const auto bits = static_cast<uint16_t>(value);
  at[0] = static_cast<uint8_t>(bits & 0xFF);
  at[1] = static_cast<uint8_t>(bits >> 8);
}

int16_t Narrow16(int32_t value) {
  if (value < std::numeric_limits<int16_t>::min() || value > std::numeric_limits<int16_t>::max())
    throw RuntimeError::Overflow();
  return static_cast<int16_t>(value);
}

}  // namespace

ExcelFile::~ExcelFile() {
  if (file_ != nullptr) std::fclose(file_);
}

std::string_view ExcelFile::DefaultFormat(int index) {
  return kFormats[static_cast<size_t>(index)];
}

void ExcelFile::Put(const void* bytes, size_t count) {
  if (file_ == nullptr) throw BadFileNumber();
  if (count != 0 && std::fwrite(bytes, 1, count, file_) != count) throw RuntimeError::DeviceIo();
}

void ExcelFile::PutRecordHeader(uint16_t id, uint16_t length) {
  uint8_t header[4];
  Store16(header, id);
  Store16(header + 2, length);
  Put(header, sizeof header);
}

void ExcelFile::PutCellHeader(uint16_t id, uint16_t length, int16_t row, int16_t column,
                              uint8_t format) {
  uint8_t header[11] = {};
  Store16(header, id);
  Store16(header + 2, length);
  Store16(header + 4, row - 1);
  Store16(header + 6, column - 1);
  header[9] = format;
  Put(header, sizeof header);
}

void ExcelFile::OpenFile(std::string_view fileName) {
  if (file_ != nullptr) {
    std::fclose(file_);
    file_ = nullptr;
  }
  const std::string path = NativePath(fileName);
  try {
    // Read/write without truncation; create the file when it does not exist yet.
    std::FILE* file = OpenExportFile(files_, path, ExportOpen::KeepContents);
    if (file == nullptr && errno == ENOENT) file = OpenExportFile(files_, path, ExportOpen::Create);
    if (file == nullptr) throw OpenFailure(errno);
    file_ = file;
    std::setvbuf(file_, nullptr, _IOFBF, kStreamBuffer);
    const uint8_t bof[8] = {0x09, 0x00, 0x04, 0x00, 0x02, 0x00, 0x0A, 0x00};
    static_assert(kBof == 0x0009);
    Put(bof, sizeof bof);
  } catch (const RuntimeError& error) {
    notices_.push_back("Open File : " + std::string(fileName) + " Error\r\n" + error.Description());
    return;
  }
  WriteDefaultFormats();
}

void ExcelFile::WriteDefaultFormats() {
  try {
    uint8_t count[6];
    Store16(count, kFormatCountRecord);
    Store16(count + 2, 2);
    // The count is the highest index, although one more format follows; readers take the
    // records that follow.
    Store16(count + 4, kFormatCount - 1);
    Put(count, sizeof count);
    for (const std::string_view format : kFormats) {
      const auto length = static_cast<uint8_t>(format.size());
      PutRecordHeader(kFormatRecord, static_cast<uint16_t>(length + 1));
      Put(&length, 1);
      Put(format.data(), format.size());
    }
  } catch (const RuntimeError& error) {
    notices_.push_back("WriteDefaultFormats Error : " + error.Description());
  }
}

void ExcelFile::CloseFile() {
  const uint8_t eof[4] = {0x0A, 0x00, 0x00, 0x00};
  static_assert(kEof == 0x000A);
  Put(eof, sizeof eof);
  std::FILE* file = file_;
  file_ = nullptr;
  if (std::fclose(file) != 0) throw RuntimeError::DeviceIo();
}

bool ExcelFile::EWriteString(int16_t row, int16_t column, std::string_view text) {
  // The length is narrowed outside the trap: an over-long text reaches the caller.
  if (text.size() > 255) throw RuntimeError::Overflow();
  const auto length = static_cast<uint8_t>(text.size());
  try {
    PutCellHeader(kLabel, static_cast<uint16_t>(length + 8), row, column, 0);
    Put(&length, 1);
    Put(text.data(), text.size());
    return true;
  } catch (const RuntimeError& error) {
    lastError_ =
        "WriteString in Column " + std::to_string(column) + " Error : " + error.Description();
    return false;
  }
}

bool ExcelFile::EWriteInteger(int16_t row, int16_t column, int32_t value) {
  try {
    const int16_t narrowed = Narrow16(value);
    if (file_ == nullptr) throw BadFileNumber();
    PutCellHeader(kInteger, 9, row, column, 1);
    uint8_t bytes[2];
    Store16(bytes, narrowed);
    Put(bytes, sizeof bytes);
    return true;
  } catch (const RuntimeError& error) {
    lastError_ =
        "WriteInteger in Column " + std::to_string(column) + " Error : " + error.Description();
    return false;
  }
}

bool ExcelFile::EWriteDouble(int16_t row, int16_t column, double value, int16_t formatIndex) {
  try {
    if (file_ == nullptr) throw BadFileNumber();
    PutCellHeader(kNumber, 15, row, column, static_cast<uint8_t>(formatIndex));
    static_assert(std::endian::native == std::endian::little, "doubles are stored as in memory");
    uint8_t bytes[8];
    std::memcpy(bytes, &value, sizeof bytes);
    Put(bytes, sizeof bytes);
    return true;
  } catch (const RuntimeError& error) {
    lastError_ =
        "WriteDouble in Column " + std::to_string(column) + " Error : " + error.Description();
    return false;
  }
}

bool ExcelFile::SetColumnWidth(uint8_t firstColumn, uint8_t lastColumn, int16_t width) {
  try {
    const int16_t units = Narrow16(int32_t{width} * 256);
    uint8_t record[8];
    Store16(record, kColumnWidth);
    Store16(record + 2, 4);
    record[4] = static_cast<uint8_t>(firstColumn - 1);
    record[5] = static_cast<uint8_t>(lastColumn - 1);
    Store16(record + 6, units);
    Put(record, sizeof record);
    return true;
  } catch (const RuntimeError& error) {
    lastError_ = "SetColumnWidth Error : " + error.Description();
    return false;
  }
}

std::optional<int16_t> ExcelFile::SetDefaultRowHeight(int16_t points) {
  try {
    const int16_t twentieths = Narrow16(int32_t{points} * 20);
    uint8_t record[6];
    Store16(record, kDefaultRowHeight);
    Store16(record + 2, 2);
    Store16(record + 4, twentieths);
    Put(record, sizeof record);
    return 0;
  } catch (const RuntimeError& error) {
    notices_.push_back("SetDefaultRowHeight Error : " + error.Description());
    return std::nullopt;
  }
}

int32_t ExcelFile::SetRowHeight(int32_t row, int16_t points) {
  try {
    const int32_t stored = row <= 32767 ? row - 1 : row - 65536;
    const int16_t twentieths = Narrow16(int32_t{points} * 20);
    uint8_t record[20] = {};
    Store16(record, kRow);
    Store16(record + 2, 16);
    Store16(record + 4, Narrow16(stored));
    Store16(record + 8, 256);
    Store16(record + 10, twentieths);
    Put(record, sizeof record);
    return 0;
  } catch (const RuntimeError& error) {
    lastError_ = "SetRowHeight Error : " + error.Description();
    return error.Number();
  }
}

}  // namespace vantrel
