#include "vantrel/recorded_export.h"

#include "control/module.h"
#include "decoding/cell_reading.h"
#include "decoding/grid_setup.h"
#include "decoding/stamps.h"
#include "description/field_types.h"
#include "output/output_steps.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

// Events of a control that only exports: nobody listens.
struct SilentEvents : ControlEvents {};

}  // namespace

std::string RecordedLine(const RecordedRow& row, RecordedStamps stamps) {
  std::string text;
  if (stamps.date) (text += FormatStatusDate(row.pcTime)) += '\t';
  if (stamps.time) (text += FormatStatusTime(row.pcTime)) += '\t';
  if (stamps.status) (text += row.status) += '\t';
  return text += row.line;
}

std::string RecordedHeader(const HistoryDescription& description, RecordedStamps stamps) {
  std::string text;
  auto add = [&text](const std::string& caption) {
    if (!text.empty()) text += '\t';
    text += caption;
  };
  if (stamps.date) add("PC Date");
  if (stamps.time) add("PC Time");
  if (stamps.status) add("PCD");
  for (const HistoryColumn& column : description.columns)
    add(column.caption);
  return text;
}

bool ExportRecordedRows(const HistoryDescription& description, std::span<const RecordedRow> rows,
                        const RecordedExport& how, std::string& message) {
  if (rows.empty()) {
    message = "No rows to export";
    return false;
  }
  if (description.columns.size() > 127) {
    message = "The description has more columns than a table holds";
    return false;
  }
  ManualEventLoop loop;
  ScriptedPrompts prompts;
  SilentEvents events;
  ControlServices services{loop, loop.Clock(), prompts};
  services.xlsx = how.xlsx;
  services.exportFiles = how.files;
  Module m(events, services);
  InitializeControl(m);

  // The description as it was loaded, column by column in the order of the row's cells.
  m.description.Title = description.title;
  m.description.HeaderKeyText = description.key;
  m.description.DescVersion = description.version;
  m.buffer.HeaderKey = description.key;
  for (size_t i = 0; i < description.columns.size(); ++i) {
    const HistoryColumn& c = description.columns[i];
    ColumnDef& d = m.description.Columns[i + 1];
    d.Defined = -1;
    d.FieldType = FieldTypeOfWord(c.fieldType);
    d.RegisterIndex = c.registerIndex;
    d.Position = c.position;
    d.Caption = c.caption;
    d.DisplayCode = c.displayCode;
    d.Width = c.widthTwips;
  }
  m.description.ColumnCount = static_cast<int16_t>(description.columns.size());
  m.props.DateStampCol = how.stamps.date;
  m.props.TimeStampCol = how.stamps.time;
  m.props.PCDStatusCol = how.stamps.status;
  BuildGrid(m);

  // The table as the control filled it: number, PC date and time, status, then the cells,
  // each made from the text the history kept.
  const size_t columns = static_cast<size_t>(m.grid.ColumnCount());
  std::vector<bool> dateColumn(columns, false);
  for (size_t c = kFirstTraceColumn; c < columns; ++c) {
    const int32_t definition = m.grid.ColumnData(static_cast<int>(c));
    dateColumn[c] = IsDateKind(
        ExportKindOfCode(m.description.Columns[static_cast<size_t>(definition)].DisplayCode));
  }
  for (const RecordedRow& recorded : rows) {
    TableRow row;
    row.kind = recorded.kind;
    row.recordNumber = recorded.recordNumber;
    row.pcTime = recorded.pcTime;
    auto add = [&](std::string_view text) {
      const size_t c = row.stamps.Size() + row.cells.Size();
      if (c >= columns) return;
      const bool date = c == size_t{kPcDateColumn} || c == size_t{kPcTimeColumn} || dateColumn[c];
      CellRow& part = c < size_t{kFirstTraceColumn} ? row.stamps : row.cells;
      part.Append(text, {}, 0, text.empty() ? CellValue{} : CellValue::Text(),
                  ReadCellText(text, m.decimalSeparator, date));
    };
    add(std::to_string(recorded.recordNumber));
    add(FormatStatusDate(recorded.pcTime));
    add(FormatStatusTime(recorded.pcTime));
    add(recorded.status);
    const std::string_view line = recorded.line;
    for (size_t start = 0; start <= line.size();) {
      const size_t tab = std::min(line.find('\t', start), line.size());
      add(line.substr(start, tab - start));
      start = tab + 1;
    }
    m.grid.AddRow(std::move(row));
  }

  m.props.ExportFile = how.file;
  m.props.ExportFormat = how.format;
  m.CommandedExport = true;  // so that the export says what it did
  ExportFromButton(m);
  const bool written = m.grid.DataRowCount() == 0;
  message.clear();
  for (const ShownMessage& shown : prompts.Messages()) {
    if (!message.empty()) message += '\n';
    message += shown.text;
  }
  return written;
}

}  // namespace vantrel
