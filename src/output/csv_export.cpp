#include "output/csv_export.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>

#include "platform/export_file.h"
#include "platform/paths.h"
#include "vantrel/encoding.h"

namespace vantrel {
namespace {

void AppendTwoDigits(std::string& out, int value) {
  out += static_cast<char>('0' + value / 10 % 10);
  out += static_cast<char>('0' + value % 10);
}

void AppendDate(std::string& out, const DateTime& when) {
  AppendTwoDigits(out, when.year / 100);
  AppendTwoDigits(out, when.year % 100);
  out += '-';
  AppendTwoDigits(out, when.month);
  out += '-';
  AppendTwoDigits(out, when.day);
}

void AppendTime(std::string& out, const DateTime& when) {
  AppendTwoDigits(out, when.hour);
  out += ':';
  AppendTwoDigits(out, when.minute);
  out += ':';
  AppendTwoDigits(out, when.second);
}

// The shortest text that reads back as the same number, with ".".
void AppendNumber(std::string& out, double value) {
  char digits[32];
  const auto result = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, result.ptr);
}

void AppendCell(std::string& line, const ExportSource& source, int row, size_t column) {
  const ExportCell cell = ReadExportCell(source, row, column);
  switch (cell.type) {
    case ExportCell::Type::Empty:
      return;
    case ExportCell::Type::Number:
      AppendNumber(line, cell.number);
      return;
    case ExportCell::Type::DateTime:
      switch (source.columns[column].kind) {
        case ExportCellKind::Date:
          AppendDate(line, cell.when);
          return;
        case ExportCellKind::Time:
          AppendTime(line, cell.when);
          return;
        default:
          AppendDate(line, cell.when);
          line += ' ';
          AppendTime(line, cell.when);
          return;
      }
    case ExportCell::Type::Text:
      AppendCsvField(line, Cp1252ToUtf8(cell.text));
      return;
  }
}

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

void AppendCsvField(std::string& line, std::string_view utf8) {
  if (utf8.find_first_of(",\"\r\n") == std::string_view::npos) {
    line += utf8;
    return;
  }
  line += '"';
  for (const char c : utf8) {
    if (c == '"') line += '"';
    line += c;
  }
  line += '"';
}

bool CsvExporter::Export(const ExportSource& source, const std::string& path, std::string& error) {
  std::unique_ptr<std::FILE, FileCloser> file(
      OpenExportFile(ExportFilesOr(source.files), NativePath(path), ExportOpen::Truncate));
  if (!file) {
    error = "Cannot open " + path + " : " + std::strerror(errno);
    return false;
  }
  std::string line = "\xEF\xBB\xBF";
  for (size_t column = 0; column < source.columns.size(); ++column) {
    if (column > 0) line += ',';
    AppendCsvField(line, Cp1252ToUtf8(source.columns[column].caption));
  }
  line += "\r\n";
  bool written = std::fwrite(line.data(), 1, line.size(), file.get()) == line.size();
  for (int row = 1; written && row < source.table->RowCount(); ++row) {
    line.clear();
    for (size_t column = 0; column < source.columns.size(); ++column) {
      if (column > 0) line += ',';
      AppendCell(line, source, row, column);
    }
    line += "\r\n";
    written = std::fwrite(line.data(), 1, line.size(), file.get()) == line.size();
  }
  std::FILE* raw = file.release();
  if (std::fclose(raw) != 0) written = false;
  if (!written) error = "Cannot write " + path + " : " + std::strerror(errno);
  return written;
}

}  // namespace vantrel
