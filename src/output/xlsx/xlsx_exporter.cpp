#include "vantrel/xlsx_exporter.h"

#include <xlsxwriter.h>

#include <string>

#include "platform/export_file.h"
#include "platform/paths.h"
#include "vantrel/encoding.h"

namespace vantrel {
namespace {

constexpr double kTwipsPerPixel = 15.0;

// The formats cells need, created once per workbook.
struct Formats {
  lxw_format* header = nullptr;
  lxw_format* date = nullptr;
  lxw_format* time = nullptr;
  lxw_format* dateTime = nullptr;

  explicit Formats(lxw_workbook* workbook) {
    header = workbook_add_format(workbook);
    format_set_bold(header);
    date = workbook_add_format(workbook);
    format_set_num_format(date, "dd/mm/yy");
    time = workbook_add_format(workbook);
    format_set_num_format(time, "hh:mm:ss");
    dateTime = workbook_add_format(workbook);
    format_set_num_format(dateTime, "dd/mm/yy hh:mm");
  }

  lxw_format* For(ExportCellKind kind) const {
    switch (kind) {
      case ExportCellKind::Date:
        return date;
      case ExportCellKind::Time:
        return time;
      default:
        return dateTime;
    }
  }
};

// Remembers the first failure of a sequence of writes.
class Writes {
 public:
  void operator()(lxw_error result) {
    if (result != LXW_NO_ERROR && first_ == LXW_NO_ERROR) first_ = result;
  }
  lxw_error First() const { return first_; }

 private:
  lxw_error first_ = LXW_NO_ERROR;
};

void WriteText(Writes& check, lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column,
               std::string_view cp1252, lxw_format* format = nullptr) {
  check(worksheet_write_string(sheet, row, column, Cp1252ToUtf8(cp1252).c_str(), format));
}

void WriteTrace(Writes& check, lxw_worksheet* sheet, const Formats& formats,
                const ExportSource& source) {
  worksheet_freeze_panes(sheet, 1, 0);
  for (size_t c = 0; c < source.columns.size(); ++c) {
    const auto column = static_cast<lxw_col_t>(c);
    const auto pixels = static_cast<uint32_t>(source.columns[c].widthTwips / kTwipsPerPixel);
    check(worksheet_set_column_pixels(sheet, column, column, pixels, nullptr));
  }
  for (size_t c = 0; c < source.columns.size(); ++c) {
    WriteText(check, sheet, 0, static_cast<lxw_col_t>(c), source.columns[c].caption,
              formats.header);
  }
  for (int row = 1; row < source.table->RowCount(); ++row) {
    const auto sheetRow = static_cast<lxw_row_t>(row);
    for (size_t c = 0; c < source.columns.size(); ++c) {
      const auto column = static_cast<lxw_col_t>(c);
      const ExportCell cell = ReadExportCell(source, row, c);
      switch (cell.type) {
        case ExportCell::Type::Empty:
          break;
        case ExportCell::Type::Number:
          check(worksheet_write_number(sheet, sheetRow, column, cell.number, nullptr));
          break;
        case ExportCell::Type::DateTime:
          check(worksheet_write_number(sheet, sheetRow, column, cell.number,
                                       formats.For(source.columns[c].kind)));
          break;
        case ExportCell::Type::Text:
          WriteText(check, sheet, sheetRow, column, cell.text);
          break;
      }
    }
  }
}

void WriteDescription(Writes& check, lxw_worksheet* sheet, const Formats& formats,
                      const ExportSource& source) {
  check(worksheet_set_column(sheet, 0, 0, 16, nullptr));
  check(worksheet_set_column(sheet, 1, 1, 24, nullptr));
  WriteText(check, sheet, 0, 0, "Title", formats.header);
  WriteText(check, sheet, 0, 1, source.title);
  WriteText(check, sheet, 1, 0, "Key", formats.header);
  WriteText(check, sheet, 1, 1, source.key);
  WriteText(check, sheet, 2, 0, "Version", formats.header);
  check(worksheet_write_number(sheet, 2, 1, source.version, nullptr));
  const char* headers[] = {"Column", "Caption", "Register", "Type", "Position", "Display code"};
  for (lxw_col_t c = 0; c < 6; ++c)
    WriteText(check, sheet, 4, c, headers[c], formats.header);
  lxw_row_t row = 5;
  for (size_t c = 0; c < source.columns.size(); ++c) {
    const ExportColumn& column = source.columns[c];
    check(worksheet_write_number(sheet, row, 0, static_cast<double>(c + 1), nullptr));
    WriteText(check, sheet, row, 1, column.caption);
    if (column.traceColumn) {
      check(worksheet_write_number(sheet, row, 2, column.registerIndex, nullptr));
      WriteText(check, sheet, row, 3, column.fieldType);
      check(worksheet_write_number(sheet, row, 4, column.position, nullptr));
      WriteText(check, sheet, row, 5, column.displayCode);
    } else {
      WriteText(check, sheet, row, 3, "PC stamp or controller status");
    }
    ++row;
  }
}

}  // namespace

bool XlsxExporter::Export(const ExportSource& source, const std::string& path, std::string& error) {
  // The workbook is written beside the target and put in place when complete.
  StagedFile staged(ExportFilesOr(source.files), NativePath(path));
  if (!staged.Ready()) {
    error = staged.Error();
    return false;
  }
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;
  lxw_workbook* workbook = workbook_new_opt(staged.Path().c_str(), &options);
  if (workbook == nullptr) {
    error = "Cannot create " + path;
    return false;
  }
  const Formats formats(workbook);
  Writes check;
  lxw_worksheet* trace = workbook_add_worksheet(workbook, "Trace");
  lxw_worksheet* description = workbook_add_worksheet(workbook, "Description");
  if (trace == nullptr || description == nullptr) {
    workbook_close(workbook);
    error = "Cannot add the sheets to " + path;
    return false;
  }
  WriteTrace(check, trace, formats, source);
  WriteDescription(check, description, formats, source);
  const lxw_error closed = workbook_close(workbook);  // frees the workbook whatever happens
  const lxw_error first = check.First() != LXW_NO_ERROR ? check.First() : closed;
  if (first != LXW_NO_ERROR) {
    error = std::string("Cannot write ") + path + " : " + lxw_strerror(first);
    return false;
  }
  if (!staged.Commit()) {
    error = staged.Error();
    return false;
  }
  return true;
}

}  // namespace vantrel
