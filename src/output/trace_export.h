#pragma once
// The export of the table into a spreadsheet file.

#include "control/module.h"

namespace vantrel {

// Exports the shown (or selected) columns of the table to the export file, raising
// NewExportFile once the name is known; the table is emptied after a successful export.
void ExportExcelFile(Module& m);

}  // namespace vantrel
