#pragma once
// The rules by which the export and the graph read a cell's text, applied once when the cell
// is made: a number when the whole text is one, the graph's number-or-0, and for a date or time
// column the spreadsheet serial of the date shown.

#include <string_view>

#include "vantrel/record_cells.h"
#include "vantrel/table_export.h"

namespace vantrel {

// How the export writes the cells of a trace column with display code `code`: codes starting
// with "t" (any case) are dates ("td"), times ("th"), both, or text ("tx"); others general.
ExportCellKind ExportKindOfCode(std::string_view code);

// Whether the export reads a column of this kind as dates.
inline bool IsDateKind(ExportCellKind kind) {
  return kind == ExportCellKind::Date || kind == ExportCellKind::Time ||
         kind == ExportCellKind::DateTime;
}

// The readings of any text.
CellReading ReadCellText(std::string_view text, char decimalSeparator, bool dateColumn);

// Appends a cell made from a text alone (a text kept by a record history, a test's): a text
// value, or none for an empty text, with the text's readings.
void AppendTextCell(CellRow& cells, std::string_view text, char decimalSeparator, bool dateColumn);

// The readings of a text that the decoder wrote for `value` / 10^`decimals` (the decimal
// rendering): the same as ReadCellText gives for it, without reading the text again.
// Whether that reading is the value itself, `value` / 10^`decimals` (CellRow::AppendDecimal):
// not for a date column, nor where the quotient is not the one a double rounds to.
bool DecimalReadingIsItsValue(int64_t value, int decimals, bool dateColumn);

CellReading ReadDecimalCell(std::string_view text, int64_t value, int decimals,
                            char decimalSeparator, bool dateColumn);

}  // namespace vantrel
