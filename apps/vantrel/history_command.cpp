#include "history_command.h"

#include <cstdio>
#include <filesystem>

#include "console_prompts.h"
#include "vantrel/encoding.h"
#include "vantrel/history/record_history.h"
#include "vantrel/posix_export_files.h"
#include "vantrel/recorded_export.h"
#include "vantrel/xlsx_exporter.h"

namespace vantrel::cli {
namespace {

int Fail(const std::string& message) {
  std::fprintf(stderr, "vantrel history: %s\n", message.c_str());
  return 1;
}

int List(const history::HistoryReader& reader) {
  std::string error;
  const std::vector<history::BufferSummary> buffers = reader.Buffers(error);
  if (!error.empty()) return Fail(error);
  std::printf("Buffer\tDescriptions\tRows\tRecords\tMissed\tFirst\tLast\n");
  for (const history::BufferSummary& b : buffers) {
    std::printf("%s\t%lld\t%lld\t%lld\t%lld\t%s\t%s\n", Cp1252ToUtf8Line(b.key).c_str(),
                static_cast<long long>(b.descriptions), static_cast<long long>(b.rows),
                static_cast<long long>(b.records), static_cast<long long>(b.missed),
                b.first.c_str(), b.last.c_str());
  }
  return 0;
}

// The file of part `index`: the name given for the first, a number before the extension for
// the parts of later descriptions.
std::string PartFile(const std::string& output, size_t index) {
  if (index == 0) return output;
  std::filesystem::path path(output);
  const std::string extension = path.extension().string();
  path.replace_extension();
  return path.string() + "_" + std::to_string(index + 1) + extension;
}

}  // namespace

int History(const HistoryOptions& o) {
  std::string error;
  if (!history::IsServerHistory(o.file) && !std::filesystem::is_regular_file(o.file))
    return Fail("no history at " + o.file);
  const auto reader = history::OpenHistoryReader(o.file, error);
  if (!reader) return Fail(error);
  if (o.list) return List(*reader);

  std::string key = o.key;
  if (key.empty()) {
    // A history of one buffer needs no key.
    const std::vector<history::BufferSummary> buffers = reader->Buffers(error);
    if (buffers.size() != 1) {
      return Fail(buffers.empty() ? "the history holds no buffer"
                                  : "the history holds several buffers: choose one with --key "
                                    "(see --list)");
    }
    key = Cp1252ToUtf8Line(buffers.front().key);
  }
  std::string from;
  std::string to;
  if (!o.from.empty()) {
    const auto time = history::HistoryTime(o.from, false);
    if (!time) return Fail("--from '" + o.from + "' is not a time (YYYY-MM-DD[ hh:mm[:ss[.fff]]])");
    from = *time;
  }
  if (!o.to.empty()) {
    const auto time = history::HistoryTime(o.to, true);
    if (!time) return Fail("--to '" + o.to + "' is not a time (YYYY-MM-DD[ hh:mm[:ss[.fff]]])");
    to = *time;
  }

  std::vector<history::RecordedPart> parts;
  if (!reader->ReadRange(key, from, to, parts, error)) return Fail(error);
  if (parts.empty()) return Fail("no rows of buffer " + key + " in that range");

  const RecordedStamps stamps{o.dateColumn, o.timeColumn, o.statusColumn};
  if (o.format == "text") {
    for (const history::RecordedPart& part : parts) {
      std::printf("%s\n", Cp1252ToUtf8Line(RecordedHeader(part.description, stamps)).c_str());
      for (const RecordedRow& row : part.rows)
        std::printf("%s\n", Cp1252ToUtf8Line(RecordedLine(row, stamps)).c_str());
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
  }

  if (o.output.empty()) return Fail("--format " + o.format + " needs --output FILE");
  XlsxExporter xlsx;
  RecordedExport how;
  how.format = o.format == "xlsx" ? 1 : o.format == "csv" ? 2 : 0;
  how.stamps = stamps;
  how.xlsx = &xlsx;
  how.files = &PosixExportFiles();
  int status = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    how.file = PartFile(o.output, i);
    std::string message;
    const bool written = ExportRecordedRows(parts[i].description, parts[i].rows, how, message);
    std::fprintf(stderr, "%s\n", Cp1252ToUtf8Line(message).c_str());
    if (!written) status = 1;
  }
  return status;
}

}  // namespace vantrel::cli
