#pragma once
// The CSV export: UTF-8 with a byte-order mark (so that spreadsheet programs take it as
// UTF-8), comma-separated, fields quoted as RFC 4180 says, lines ending in CR LF, a header
// row of captions; dates as YYYY-MM-DD, times as HH:MM:SS, numbers with "." whatever the
// table's decimal separator.

#include "vantrel/table_export.h"

namespace vantrel {

class CsvExporter final : public TableExporter {
 public:
  bool Export(const ExportSource& source, const std::string& path, std::string& error) override;
};

// One field, quoted when it holds a comma, a quote or a line break.
void AppendCsvField(std::string& line, std::string_view utf8);

}  // namespace vantrel
