#include "output/export_service.h"

#include <cstdio>
#include <filesystem>

#include "output/csv_export.h"
#include "output/excel_file.h"
#include "platform/export_file.h"
#include "platform/paths.h"
#include "platform/runtime_error.h"
#include "platform/text_file.h"

namespace vantrel {
namespace {

constexpr int16_t kFormatGeneral = 0;
constexpr int16_t kFormatDate = 12;
constexpr int16_t kFormatTime = 19;
constexpr int16_t kFormatDateTime = 20;

int16_t Cell16(int value) {
  if (value > 32767) throw RuntimeError::Overflow();
  return static_cast<int16_t>(value);
}

void RemoveFile(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(NativePath(path), ignored);
}

// A file that exists must take a write at its start before the export overwrites it.
void CheckWritable(ExportFiles& files, const std::string& path) {
  const std::string native = NativePath(path);
  if (!FileExists(native)) return;
  std::FILE* file = OpenExportFile(files, native, ExportOpen::KeepContents);
  if (file == nullptr) throw RuntimeError(70, "Permission denied");
  const unsigned char one[2] = {1, 0};
  const bool written = std::fwrite(one, 1, sizeof one, file) == sizeof one;
  if (std::fclose(file) != 0 || !written) throw RuntimeError::DeviceIo();
}

// The Excel 2.x file: one spreadsheet column per exported column, a failed column ending
// that column only.
class Excel2Export {
 public:
  Excel2Export(const ExportRequest& request, ExportResult& result)
      : request_(request), result_(result), writer_(ExportFilesOr(request.source.files)) {}

  int16_t Write() {
    writer_.OpenFile(request_.target);
    TakeNotices();
    // The writer has said why it could not open the file; the rows must not be lost.
    if (!writer_.IsOpen()) throw RuntimeError::PathFileAccess();
    writer_.SetDefaultRowHeight(14);
    TakeNotices();
    int16_t counter = 0;
    for (const ExportColumn& column : request_.source.columns)
      WriteColumn(counter, column);
    writer_.CloseFile();
    return counter;
  }

  // After a failure: the file closed, whatever it holds.
  void Abandon() {
    TakeNotices();
    if (!writer_.IsOpen()) return;
    try {
      writer_.CloseFile();
    } catch (const RuntimeError&) {
    }
  }

 private:
  void TakeNotices() {
    for (std::string& text : writer_.TakeNotices())
      result_.messages.push_back({std::move(text), "Vantrel", MessageIcon::None, false});
  }

  void Failed(const std::string& text) {
    result_.lastColumnError = text;
    result_.messages.push_back(
        {text, "Vantrel exportation aborted !", MessageIcon::Exclamation, true});
  }

  void WriteColumn(int16_t& counter, const ExportColumn& column) {
    ++counter;
    try {
      const int32_t width = column.widthTwips / 100;
      if (width > 32767) throw RuntimeError::Overflow();
      if (!writer_.SetColumnWidth(static_cast<uint8_t>(counter), static_cast<uint8_t>(counter),
                                  static_cast<int16_t>(width))) {
        return Failed(writer_.LastError());
      }
      if (!writer_.EWriteString(1, counter, column.caption)) return Failed(writer_.LastError());
      const TableModel& table = *request_.source.table;
      const int16_t dateFormat = column.kind == ExportCellKind::Date   ? kFormatDate
                                 : column.kind == ExportCellKind::Time ? kFormatTime
                                                                       : kFormatDateTime;
      for (int row = 1; row < table.RowCount(); ++row) {
        const TableRow& cells = table.Row(row);
        const std::string_view text = cells.Text(column.gridColumn);
        if (text.empty()) continue;
        const int16_t sheetRow = Cell16(row + 1);
        bool written = false;
        switch (column.kind) {
          case ExportCellKind::Text:
            written = writer_.EWriteString(sheetRow, counter, text);
            break;
          case ExportCellKind::Date:
          case ExportCellKind::Time:
          case ExportCellKind::DateTime: {
            const auto serial = cells.Serial(column.gridColumn);
            if (!serial) throw RuntimeError::TypeMismatch();
            written = writer_.EWriteDouble(sheetRow, counter, *serial, dateFormat);
            break;
          }
          case ExportCellKind::General:
            if (const auto number = cells.Number(column.gridColumn)) {
              written = writer_.EWriteDouble(sheetRow, counter, *number, kFormatGeneral);
            } else {
              written = writer_.EWriteString(sheetRow, counter, text);
            }
            break;
        }
        if (!written) return Failed(writer_.LastError());
      }
    } catch (const RuntimeError& error) {
      Failed("WriteColumn " + std::to_string(column.gridColumn) +
             " Error : " + error.Description());
    }
  }

  const ExportRequest& request_;
  ExportResult& result_;
  ExcelFile writer_;
};

// A format written by a TableExporter; returns how many columns.
int16_t WriteWithExporter(TableExporter* exporter, const ExportRequest& request) {
  if (exporter == nullptr) throw RuntimeError(75, "XLSX export is not available in this host");
  if (request.source.columns.empty()) return 0;
  std::string error;
  if (!exporter->Export(request.source, request.target, error)) throw RuntimeError(75, error);
  return static_cast<int16_t>(request.source.columns.size());
}

}  // namespace

std::string_view DefaultExportName(int16_t format) {
  switch (format) {
    case kExportXlsx:
      return "Vantrel.xlsx";
    case kExportCsv:
      return "Vantrel.csv";
    default:
      return "Vantrel.xls";
  }
}

ExportResult ExportTable(ExportRequest request) {
  ExportResult result;
  // A folder, device or pipe in the target's place is refused and left alone: writing to a
  // pipe waits for a reader, and what goes to a device is lost.
  if (IsNonRegularFile(request.target)) {
    result.failed = true;
    result.outcome = {"ExportExcelFile Error " + request.target + " is not a regular file",
                      "Vantrel exportation aborted !", MessageIcon::Exclamation, true};
    return result;
  }
  Excel2Export excel(request, result);
  try {
    if (request.checkWritable) CheckWritable(ExportFilesOr(request.source.files), request.target);
    if (request.starting) request.starting(request.source);
    int16_t written = 0;
    if (request.format == kExportXlsx) {
      written = WriteWithExporter(request.xlsx, request);
    } else if (request.format == kExportCsv) {
      CsvExporter csv;
      written = WriteWithExporter(&csv, request);
    } else {
      written = excel.Write();
    }
    if (written != 0) {
      result.written = true;
      result.outcome = {"Successful export to file : " + request.target, "Vantrel exportation",
                        MessageIcon::Information, true};
    } else {
      result.outcome = {"Export aborted : No data to export !", "Vantrel exportation",
                        MessageIcon::Exclamation, true};
      RemoveFile(request.target);
    }
  } catch (const RuntimeError& error) {
    result.failed = true;
    result.outcome = {"ExportExcelFile Error " + error.Description(),
                      "Vantrel exportation aborted !", MessageIcon::Exclamation, true};
    excel.Abandon();
    if (!request.target.empty()) RemoveFile(request.target);
  }
  return result;
}

}  // namespace vantrel
