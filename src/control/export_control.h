#pragma once
// Exporting the table as the control does: the target's name, the export written through the
// export call, its messages shown as the export's origin asks, and the table emptied only
// once the file was written.

#include "control/module.h"

namespace vantrel {

// Exports the shown (or selected) columns of the table to the export file, raising
// NewExportFile once the name is known; the table is emptied after a successful export.
void ExportExcelFile(Module& m);
// The export button: exports the table when it holds at least one data row.
void ExportFromButton(Module& m);

}  // namespace vantrel
