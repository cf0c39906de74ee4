// Cells of the table as the values they stand for, for the export formats beside the
// Excel 2.x file.

#include "vantrel/table_export.h"

#include "platform/date_serial.h"

namespace vantrel {

ExportCell ReadExportCell(const ExportSource& source, int row, size_t column) {
  const ExportColumn& c = source.columns[column];
  ExportCell cell;
  const TableRow& cells = source.table->Row(row);
  const int index = c.gridColumn;
  cell.text = cells.Text(index);
  if (cell.text.empty()) return cell;
  switch (c.kind) {
    case ExportCellKind::Date:
    case ExportCellKind::Time:
    case ExportCellKind::DateTime:
      if (const auto serial = cells.Serial(index)) {
        cell.type = ExportCell::Type::DateTime;
        cell.number = *serial;
        cell.when = DateTimeFromSerial(*serial);
        return cell;
      }
      break;  // a marker row's dashes in a date column stay text
    case ExportCellKind::General:
      if (const auto number = cells.Number(index)) {
        cell.type = ExportCell::Type::Number;
        cell.number = *number;
        return cell;
      }
      break;
    case ExportCellKind::Text:
      break;
  }
  cell.type = ExportCell::Type::Text;
  return cell;
}

}  // namespace vantrel
