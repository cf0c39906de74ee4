#pragma once
// The .xlsx export (ExportFormat 1), written with libxlsxwriter in its constant-memory mode.
// A sheet "Trace" holds the table (header row bold and frozen, column widths from the
// table, dates and times as date cells, numbers as numbers, texts as texts) and a sheet
// "Description" the trace description and how each exported column was decoded. It lives in
// the vantrel_xlsx library, so that hosts without it link nothing of libxlsxwriter; a host
// hands one to the control through ControlServices::xlsx.

#include "vantrel/table_export.h"

namespace vantrel {

class XlsxExporter final : public TableExporter {
 public:
  bool Export(const ExportSource& source, const std::string& path, std::string& error) override;
};

}  // namespace vantrel
