#pragma once
// What an export of the record table takes: the columns chosen (the yellow headers, or else
// every shown column), each with its caption, width, kind of cell and definition.

#include "description/trace_description.h"
#include "output/export_service.h"
#include "vantrel/table_model.h"

namespace vantrel {

// Which stamp columns the table shows.
struct ShownStamps {
  bool date = false;
  bool time = false;
  bool status = false;
};

// The table columns an export takes: the selected ones, or else every shown one.
std::vector<int> ExportedColumns(const TableModel& table, ShownStamps shown);

// The export's source: the table, its chosen columns and the description's title and key.
ExportSource TraceExportSource(const TableModel& table, const TraceDescription& description,
                               ShownStamps shown, char decimalSeparator);

}  // namespace vantrel
