#include "vantrel/recorded_export.h"

#include "decoding/cell_reading.h"
#include "decoding/stamps.h"
#include "decoding/table_layout.h"
#include "description/field_types.h"
#include "description/profile_file.h"
#include "output/export_naming.h"
#include "output/export_service.h"

namespace vantrel {

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
  // The table the control showed: number, PC date and time, status, then the trace columns,
  // every cell made from the text the history kept.
  const size_t traceColumns = description.columns.size();
  TableModel table;
  table.SetColumnCount(kFirstTraceColumn + static_cast<int>(traceColumns));
  std::vector<bool> dateColumn(traceColumns);
  for (size_t c = 0; c < traceColumns; ++c)
    dateColumn[c] = IsDateKind(ExportKindOfCode(description.columns[c].displayCode));
  for (const RecordedRow& recorded : rows) {
    TableRow row;
    row.kind = recorded.kind;
    row.recordNumber = recorded.recordNumber;
    row.pcTime = recorded.pcTime;
    auto stamp = [&row](std::string_view text, bool date) {
      AppendTextCell(row.stamps, text, '.', date);
    };
    stamp(std::to_string(recorded.recordNumber), false);
    stamp(FormatStatusDate(recorded.pcTime), true);
    stamp(FormatStatusTime(recorded.pcTime), true);
    stamp(recorded.status, false);
    const std::string_view line = recorded.line;
    for (size_t start = 0; start <= line.size() && row.cells.Size() < traceColumns;) {
      const size_t tab = std::min(line.find('\t', start), line.size());
      const std::string_view text = line.substr(start, tab - start);
      AppendTextCell(row.cells, text, '.', dateColumn[row.cells.Size()]);
      start = tab + 1;
    }
    table.AddRow(std::move(row));
  }

  // Every shown column, as the control exports when none is selected.
  ExportRequest request;
  request.format = how.format;
  request.xlsx = how.xlsx;
  request.checkWritable = true;
  ExportSource& source = request.source;
  source.table = &table;
  source.files = how.files;
  source.title = description.title;
  source.key = description.key;
  source.version = description.version;
  auto stampColumn = [&source](bool shown, int column, const char* caption, ExportCellKind kind) {
    if (!shown) return;
    ExportColumn c;
    c.gridColumn = column;
    c.caption = caption;
    c.widthTwips = kStampColumnWidth;
    c.kind = kind;
    source.columns.push_back(std::move(c));
  };
  stampColumn(how.stamps.date, kPcDateColumn, "PC Date", ExportCellKind::Date);
  stampColumn(how.stamps.time, kPcTimeColumn, "PC Time", ExportCellKind::Time);
  stampColumn(how.stamps.status, kStatusColumn, "PCD", ExportCellKind::General);
  for (size_t i = 0; i < traceColumns; ++i) {
    const HistoryColumn& h = description.columns[i];
    ExportColumn c;
    c.gridColumn = kFirstTraceColumn + static_cast<int>(i);
    c.caption = h.caption;
    c.widthTwips = h.widthTwips;
    c.kind = ExportKindOfCode(h.displayCode);
    c.traceColumn = true;
    c.registerIndex = h.registerIndex;
    c.fieldType = FieldTypeWord(FieldTypeOfWord(h.fieldType));
    c.position = h.position;
    c.displayCode = h.displayCode;
    source.columns.push_back(std::move(c));
  }
  std::string file = how.file.empty()
                         ? AddTrailingSeparator(".") + std::string(DefaultExportName(how.format))
                         : how.file;
  file = WithDefaultExportName(file, DefaultExportName(how.format));
  request.target = ExportTargetName(file, 0, DateTime{}, 0);

  const ExportResult result = ExportTable(std::move(request));
  message.clear();
  auto say = [&message](const ExportMessage& m) {
    if (!message.empty()) message += '\n';
    message += m.text;
  };
  for (const ExportMessage& m : result.messages)
    say(m);
  say(result.outcome);
  return result.written;
}

}  // namespace vantrel
