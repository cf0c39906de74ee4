// Exporting the table as the control does: the target's name, the columns chosen (the
// yellow headers, or else every shown column), the export written through the export call,
// its messages shown as the export's origin asks, and the table emptied only once the file
// was written.

#include "output/trace_export.h"

#include <string>

#include "control/clear.h"
#include "decoding/cell_reading.h"
#include "description/field_types.h"
#include "description/profile_file.h"
#include "output/export_naming.h"
#include "output/export_service.h"
#include "output/output_steps.h"

namespace vantrel {
namespace {

// Messages meant for whoever asked for the export are shown only for the controller's
// command; the writer's own failures always.
bool ShowsMessages(const Module& m) {
  return !m.props.AutoExport && m.CommandedExport;
}

void Show(Module& m, const ExportMessage& message) {
  if (message.toRequester && !ShowsMessages(m)) return;
  m.services.prompts.ShowMessage(message.text, message.title, message.icon, MessageButtons::Ok);
}

ExportCellKind KindOfColumn(const Module& m, int column) {
  if (column == kPcDateColumn) return ExportCellKind::Date;
  if (column == kPcTimeColumn) return ExportCellKind::Time;
  if (column == kStatusColumn) return ExportCellKind::General;
  const int32_t definition = m.grid.ColumnData(column);
  if (definition < 0 || definition >= static_cast<int32_t>(m.description.Columns.size())) {
    return ExportCellKind::General;
  }
  return ExportKindOfCode(m.description.Columns[static_cast<size_t>(definition)].DisplayCode);
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

void SetBusy(Module& m, bool busy) {
  m.surface.busyCursor = busy;
  m.SurfaceChanged();
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
  p.ExportFile = WithDefaultExportName(p.ExportFile, DefaultExportName(p.ExportFormat));
  ExportRequest request;
  request.format = p.ExportFormat;
  request.target =
      ExportTargetName(p.ExportFile, p.IndexFile, m.services.clock.Now(), m.buffer.ExportIndex);
  request.xlsx = m.services.xlsx;
  request.checkWritable = p.IndexFile == 0;
  request.source.files = m.services.exportFiles;
  request.starting = [&m](ExportSource& source) {
    m.events.NewExportFile();
    m.grid.SetRedraw(false);
    source = SourceOf(m);
  };
  const ExportResult result = ExportTable(std::move(request));
  m.LastExportError = result.lastColumnError;
  for (const ExportMessage& message : result.messages)
    Show(m, message);
  if (result.failed) Show(m, result.outcome);
  m.grid.SetRedraw(true);
  SetBusy(m, false);
  if (result.failed) return;
  if (result.written) ClearTable(m);
  Show(m, result.outcome);
}

void ExportFromButton(Module& m) {
  if (m.grid.RowCount() < 2) return;
  ExportExcelFile(m);
}

}  // namespace vantrel
