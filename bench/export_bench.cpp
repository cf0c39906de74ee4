// Exporting a table of 100,000 rows x 10 columns: the Excel 2.x export from the table model,
// the same cells written as an .xlsx by libxlsxwriter in its constant-memory mode, and the
// same number of bytes written through one buffered stream.

#include <benchmark/benchmark.h>
#include <xlsxwriter.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "decoding/cell_reading.h"
#include "decoding/row_store.h"
#include "decoding/table_layout.h"
#include "output/export_service.h"
#include "output/trace_export.h"
#include "platform/date_serial.h"
#include "platform/numbers.h"
#include "vantrel/manual_event_loop.h"
#include "vantrel/scripted_prompts.h"
#include "vantrel/xlsx_exporter.h"

namespace vantrel {
namespace {

constexpr int kRows = 100000;

std::string TempFile(const char* name) {
  return (std::filesystem::temp_directory_path() / name).string();
}

// The trace cells of a tab-separated line (with a leading tab), each read as the cells of a
// column with that display code are.
CellRow TextCells(const char* const* codes, std::string_view line) {
  CellRow cells;
  size_t start = 1;
  for (int c = 0; start <= line.size(); ++c) {
    const size_t tab = std::min(line.find('\t', start), line.size());
    const std::string_view text = line.substr(start, tab - start);
    AppendTextCell(cells, text, '.', IsDateKind(ExportKindOfCode(codes[c])));
    start = tab + 1;
  }
  return cells;
}

// A table of kRows decoded-looking rows: the PC date and time, then eight trace columns
// (numbers with decimals, signed numbers, hexadecimal words, texts, a controller time stamp).
struct FilledTable {
  FilledTable() {
    const char* codes[] = {"2d", "sd", "h", "s", "t", "d", "f", "a"};
    for (int c = 1; c <= 8; ++c) {
      ColumnDef& d = description.Columns[static_cast<size_t>(c)];
      d.Defined = -1;
      d.FieldType = 4;
      d.Caption = "Column " + std::to_string(c);
      d.DisplayCode = codes[c - 1];
      d.Width = 1000;
    }
    description.ColumnCount = 8;
    const std::string font = "Courier";
    const std::string size = "10";
    BuildTable(full, description, {font, size, true, true, false});
    for (int r = 0; r < kRows; ++r) {
      char line[200];
      std::snprintf(line, sizeof line,
                    "\t%d.%02d\t%d\t%04X\t%s\t15/11/26 %02d:%02d:%02d\t%d\tPump %s\tLOT%d",
                    r % 2000, r % 100, 150 - r % 300, r & 0xFFFF, r % 3 == 0 ? "Running" : "Idle",
                    r / 3600 % 24, r / 60 % 60, r % 60, r, r % 2 == 0 ? "North" : "South", r % 10);
      rows.StampAt(DateTime{2026, 11, 15, r / 3600 % 24, r / 60 % 60, r % 60, 0});
      CellRow cells = TextCells(codes, line);
      rows.CountRecord();
      rows.AppendRecord(cells, RowKind::Record, {});
    }
  }

  // Exports the whole table in `format` (0 Excel 2.x, 1 .xlsx, 2 CSV) as the control does.
  bool Export(int16_t format, const std::string& path, TableExporter* xlsx = nullptr) const {
    ExportRequest request;
    request.format = format;
    request.target = path;
    request.xlsx = xlsx;
    request.source = TraceExportSource(full, description, {true, true, false}, '.');
    return ExportTable(std::move(request)).written;
  }

  TraceDescription description;
  TableModel full;
  char separator = '.';
  RowStore rows{full, separator, [](std::string_view) {}};
};

FilledTable& Table() {
  static FilledTable table;
  return table;
}

// The export in `format` (0 Excel 2.x, 1 .xlsx, 2 CSV) of the whole table.
void ExportInFormat(benchmark::State& state, int16_t format, const char* name) {
  const FilledTable& t = Table();
  XlsxExporter xlsx;
  const std::string path = TempFile(name);
  bool written = true;
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(path);
    state.ResumeTiming();
    written = written && t.Export(format, path, &xlsx);
  }
  if (!written) state.SkipWithError("the export failed");
  const auto bytes = std::filesystem::file_size(path);
  state.SetBytesProcessed(static_cast<int64_t>(bytes) * state.iterations());
  state.SetItemsProcessed(int64_t{kRows} * state.iterations());
  state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
}

void BM_ExportExcel2(benchmark::State& state) {
  ExportInFormat(state, 0, "vantrel-bench.xls");
}
void BM_ExportXlsx(benchmark::State& state) {
  ExportInFormat(state, 1, "vantrel-bench.xlsx");
}
void BM_ExportCsv(benchmark::State& state) {
  ExportInFormat(state, 2, "vantrel-bench.csv");
}

// The same cells, typed the same way, written by libxlsxwriter.
void BM_XlsxConstantMemory(benchmark::State& state) {
  FilledTable& t = Table();
  const TableModel& grid = t.full;
  const std::string path = TempFile("vantrel-bench.xlsx");
  for (auto _ : state) {
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    lxw_workbook* book = workbook_new_opt(path.c_str(), &options);
    lxw_worksheet* sheet = workbook_add_worksheet(book, "Trace");
    lxw_format* date = workbook_add_format(book);
    format_set_num_format(date, "dd/mm/yy");
    lxw_format* time = workbook_add_format(book);
    format_set_num_format(time, "hh:mm:ss");
    lxw_format* stamp = workbook_add_format(book);
    format_set_num_format(stamp, "dd/mm/yy hh:mm");
    const int columns = grid.ColumnCount() - 1;
    for (int r = 0; r < grid.RowCount(); ++r) {
      for (int c = 1; c <= columns; ++c) {
        const std::string text(grid.Text(r, c));
        const auto row = static_cast<lxw_row_t>(r);
        const auto col = static_cast<lxw_col_t>(c - 1);
        if (r == 0 || text.empty()) {
          if (!text.empty()) worksheet_write_string(sheet, row, col, text.c_str(), nullptr);
          continue;
        }
        lxw_format* format = c == 1 ? date : c == 2 ? time : c == 8 ? stamp : nullptr;
        if (format != nullptr) {
          worksheet_write_number(sheet, row, col, DateSerialFromText(text).value_or(0), format);
        } else if (const auto number = NumberValue(text)) {
          worksheet_write_number(sheet, row, col, *number, nullptr);
        } else {
          worksheet_write_string(sheet, row, col, text.c_str(), nullptr);
        }
      }
    }
    if (workbook_close(book) != LXW_NO_ERROR) state.SkipWithError("libxlsxwriter failed");
  }
  state.SetItemsProcessed(int64_t{kRows} * state.iterations());
  state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
}

// The lower bound: as many bytes as the Excel 2.x file, through one buffered stream.
void BM_BufferedWriteOfTheSameBytes(benchmark::State& state) {
  FilledTable& t = Table();
  const std::string excel2 = TempFile("vantrel-bench.xls");
  std::filesystem::remove(excel2);
  t.Export(kExportExcel2, excel2);
  const auto bytes = std::filesystem::file_size(excel2);
  const std::vector<char> chunk(4096, 'x');
  const std::string path = TempFile("vantrel-bench.bin");
  for (auto _ : state) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    std::setvbuf(file, nullptr, _IOFBF, 1 << 16);
    for (uintmax_t left = bytes; left > 0;) {
      const size_t n = left < chunk.size() ? static_cast<size_t>(left) : chunk.size();
      std::fwrite(chunk.data(), 1, n, file);
      left -= n;
    }
    std::fclose(file);
  }
  state.SetBytesProcessed(static_cast<int64_t>(bytes) * state.iterations());
}

BENCHMARK(BM_ExportExcel2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportXlsx)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportCsv)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_XlsxConstantMemory)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BufferedWriteOfTheSameBytes)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vantrel

BENCHMARK_MAIN();
