// Exporting the table into a spreadsheet file: the target name, the columns chosen (the
// yellow headers, or else every shown column), one typed cell per non-empty table cell, and
// the table emptied only once the file was written.

#include "output/trace_export.h"

#include <cstdio>
#include <filesystem>
#include <string>

#include "control/clear.h"
#include "decoding/cell_reading.h"
#include "description/field_types.h"
#include "description/profile_file.h"
#include "output/csv_export.h"
#include "output/excel_file.h"
#include "output/export_naming.h"
#include "output/output_steps.h"
#include "platform/export_file.h"
#include "platform/paths.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "vantrel/table_export.h"

namespace vantrel {
namespace {

constexpr int16_t kFormatGeneral = 0;
constexpr int16_t kFormatDate = 12;
constexpr int16_t kFormatTime = 19;
constexpr int16_t kFormatDateTime = 20;

constexpr int16_t kExportXlsx = 1;
constexpr int16_t kExportCsv = 2;

std::string_view DefaultExportName(int16_t format) {
  switch (format) {
    case kExportXlsx:
      return "Vantrel.xlsx";
    case kExportCsv:
      return "Vantrel.csv";
    default:
      return kDefaultExportName;
  }
}

enum class CellKind { General, Text, Date };

struct ColumnType {
  CellKind kind = CellKind::General;
  int16_t format = kFormatGeneral;
};

bool ShowsMessages(const Module& m) {
  return !m.props.AutoExport && m.CommandedExport;
}

ColumnType TypeOfColumn(const Module& m, int column) {
  if (column == kPcDateColumn) return {CellKind::Date, kFormatDate};
  if (column == kPcTimeColumn) return {CellKind::Date, kFormatTime};
  if (column == kStatusColumn) return {};
  const int32_t definition = m.grid.ColumnData(column);
  if (definition < 0 || definition >= static_cast<int32_t>(m.description.Columns.size())) return {};
  switch (ExportKindOfCode(m.description.Columns[static_cast<size_t>(definition)].DisplayCode)) {
    case ExportCellKind::Text:
      return {CellKind::Text, 0};
    case ExportCellKind::Date:
      return {CellKind::Date, kFormatDate};
    case ExportCellKind::Time:
      return {CellKind::Date, kFormatTime};
    case ExportCellKind::DateTime:
      return {CellKind::Date, kFormatDateTime};
    case ExportCellKind::General:
      break;
  }
  return {};
}

ExportCellKind KindOfColumn(const Module& m, int column) {
  const ColumnType type = TypeOfColumn(m, column);
  if (type.kind == CellKind::Text) return ExportCellKind::Text;
  if (type.kind == CellKind::General) return ExportCellKind::General;
  return type.format == kFormatDate   ? ExportCellKind::Date
         : type.format == kFormatTime ? ExportCellKind::Time
                                      : ExportCellKind::DateTime;
}

int16_t Cell16(int value) {
  if (value > 32767) throw RuntimeError::Overflow();
  return static_cast<int16_t>(value);
}

void ShowAbort(Module& m, const std::string& text) {
  if (ShowsMessages(m)) {
    m.services.prompts.ShowMessage(text, "Vantrel exportation aborted !", MessageIcon::Exclamation,
                                   MessageButtons::Ok);
  }
}

// Writes one table column as spreadsheet column `counter` + 1. A failed write ends this
// column only; the export goes on with the next one.
void WriteColumn(Module& m, ExcelFile& writer, int16_t& counter, int column) {
  ++counter;
  const auto failed = [&](const std::string& text) {
    m.LastExportError = text;
    ShowAbort(m, m.LastExportError);
  };
  try {
    const int32_t width = m.grid.ColumnWidth(column) / 100;
    if (width > 32767) throw RuntimeError::Overflow();
    if (!writer.SetColumnWidth(static_cast<uint8_t>(counter), static_cast<uint8_t>(counter),
                               static_cast<int16_t>(width))) {
      return failed(writer.LastError());
    }
    if (!writer.EWriteString(1, counter, m.grid.Text(0, column))) {
      return failed(writer.LastError());
    }
    const ColumnType type = TypeOfColumn(m, column);
    for (int row = 1; row < m.grid.RowCount(); ++row) {
      const TableRow& cells = m.grid.Row(row);
      const std::string_view text = cells.Text(column);
      if (text.empty()) continue;
      const int16_t sheetRow = Cell16(row + 1);
      bool written = false;
      switch (type.kind) {
        case CellKind::Text:
          written = writer.EWriteString(sheetRow, counter, text);
          break;
        case CellKind::Date: {
          const auto serial = cells.Serial(column);
          if (!serial) throw RuntimeError::TypeMismatch();
          written = writer.EWriteDouble(sheetRow, counter, *serial, type.format);
          break;
        }
        case CellKind::General:
          if (const auto number = cells.Number(column)) {
            written = writer.EWriteDouble(sheetRow, counter, *number, kFormatGeneral);
          } else {
            written = writer.EWriteString(sheetRow, counter, text);
          }
          break;
      }
      if (!written) return failed(writer.LastError());
    }
  } catch (const RuntimeError& error) {
    failed("WriteColumn " + std::to_string(column) + " Error : " + error.Description());
  }
}

// The table columns an export takes: the selected (yellow) ones, or else every shown one.
std::vector<int> ExportedColumns(const Module& m) {
  std::vector<int> columns;
  const int last = m.grid.ColumnCount() - 1;
  for (int column = 1; column <= last; ++column) {
    if (m.grid.Selected(column)) columns.push_back(column);
  }
  if (!columns.empty()) return columns;
  for (int column = 1; column <= last; ++column) {
    if ((column == 1 && !m.props.DateStampCol) || (column == 2 && !m.props.TimeStampCol) ||
        (column == 3 && !m.props.PCDStatusCol)) {
      continue;
    }
    columns.push_back(column);
  }
  return columns;
}

ExportSource SourceOf(const Module& m) {
  ExportSource source;
  source.table = &m.grid;
  source.decimalSeparator = m.decimalSeparator;
  source.files = m.services.exportFiles;
  source.title = m.description.Title;
  source.key = m.description.HeaderKeyText;
  source.version = m.description.DescVersion;
  for (const int column : ExportedColumns(m)) {
    ExportColumn c;
    c.gridColumn = column;
    c.caption = std::string(m.grid.Text(0, column));
    c.widthTwips = m.grid.ColumnWidth(column);
    c.kind = KindOfColumn(m, column);
    const int32_t definition = column >= kFirstTraceColumn ? m.grid.ColumnData(column) : -1;
    if (definition >= 0 && definition < static_cast<int32_t>(m.description.Columns.size())) {
      const ColumnDef& d = m.description.Columns[static_cast<size_t>(definition)];
      c.traceColumn = true;
      c.registerIndex = d.RegisterIndex;
      c.fieldType = FieldTypeWord(d.FieldType);
      c.position = d.Position;
      c.displayCode = d.DisplayCode;
    }
    source.columns.push_back(std::move(c));
  }
  return source;
}

// Writes the table in a format beside the Excel 2.x file; returns how many columns.
int16_t WriteWithExporter(Module& m, TableExporter* exporter, const std::string& target) {
  if (exporter == nullptr) throw RuntimeError(75, "XLSX export is not available in this host");
  const ExportSource source = SourceOf(m);
  if (source.columns.empty()) return 0;
  std::string error;
  if (!exporter->Export(source, target, error)) throw RuntimeError(75, error);
  return static_cast<int16_t>(source.columns.size());
}

// Writes the selected columns, or else every shown column; returns how many were written.
int16_t WriteColumns(Module& m, ExcelFile& writer) {
  int16_t counter = 0;
  const int last = m.grid.ColumnCount() - 1;
  for (int column = 1; column <= last; ++column) {
    if (m.grid.Selected(column)) WriteColumn(m, writer, counter, column);
  }
  if (counter != 0) return counter;
  for (int column = 1; column <= last; ++column) {
    if ((column == 1 && !m.props.DateStampCol) || (column == 2 && !m.props.TimeStampCol) ||
        (column == 3 && !m.props.PCDStatusCol)) {
      continue;
    }
    WriteColumn(m, writer, counter, column);
  }
  return counter;
}

void SetBusy(Module& m, bool busy) {
  m.surface.busyCursor = busy;
  m.SurfaceChanged();
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

}  // namespace

void ExportExcelFile(Module& m) {
  PropertyFields& p = m.props;
  if (p.ExportFile.empty()) {
    if (!p.AutoExport && !m.CommandedExport) {
      m.services.prompts.ShowMessage("No export file defined !", "Vantrel Export File",
                                     MessageIcon::Information, MessageButtons::Ok);
      return;
    }
    p.ExportFile = AddTrailingSeparator(m.services.currentDirectory) +
                   std::string(DefaultExportName(p.ExportFormat));
  }
  SetBusy(m, true);
  std::string target;
  if (!m.excel) {
    m.excel =
        std::make_unique<ExcelFile>(m.services.prompts, ExportFilesOr(m.services.exportFiles));
  }
  ExcelFile& writer = *m.excel;
  try {
    p.ExportFile = WithDefaultExportName(p.ExportFile, DefaultExportName(p.ExportFormat));
    target =
        ExportTargetName(p.ExportFile, p.IndexFile, m.services.clock.Now(), m.buffer.ExportIndex);
    if (p.IndexFile == 0) CheckWritable(ExportFilesOr(m.services.exportFiles), target);
    m.events.NewExportFile();

    m.grid.SetRedraw(false);
    int16_t written = 0;
    if (p.ExportFormat == kExportXlsx) {
      written = WriteWithExporter(m, m.services.xlsx, target);
    } else if (p.ExportFormat == kExportCsv) {
      CsvExporter csv;
      written = WriteWithExporter(m, &csv, target);
    } else {
      writer.OpenFile(target);
      // The writer has shown why it could not open the file; the table must not be lost.
      if (!writer.IsOpen()) throw RuntimeError::PathFileAccess();
      writer.SetDefaultRowHeight(14);
      written = WriteColumns(m, writer);
      writer.CloseFile();
    }

    m.grid.SetRedraw(true);
    SetBusy(m, false);
    if (written != 0) {
      ClearTable(m);
      if (ShowsMessages(m)) {
        m.services.prompts.ShowMessage("Successful export to file : " + target,
                                       "Vantrel exportation", MessageIcon::Information,
                                       MessageButtons::Ok);
      }
    } else {
      if (ShowsMessages(m)) {
        m.services.prompts.ShowMessage("Export aborted : No data to export !",
                                       "Vantrel exportation", MessageIcon::Exclamation,
                                       MessageButtons::Ok);
      }
      RemoveFile(target);
    }
  } catch (const RuntimeError& error) {
    if (ShowsMessages(m)) {
      m.services.prompts.ShowMessage("ExportExcelFile Error " + error.Description(),
                                     "Vantrel exportation aborted !", MessageIcon::Exclamation,
                                     MessageButtons::Ok);
    }
    m.grid.SetRedraw(true);
    SetBusy(m, false);
    if (writer.IsOpen()) {
      try {
        writer.CloseFile();
      } catch (const RuntimeError&) {
      }
    }
    if (!target.empty()) RemoveFile(target);
  }
}

void ExportFromButton(Module& m) {
  if (m.grid.RowCount() < 2) return;
  ExportExcelFile(m);
}

}  // namespace vantrel
