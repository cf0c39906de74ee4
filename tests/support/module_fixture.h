#pragma once
// A control's module on its own, for tests of the subsystems behind the public interface:
// the trace description can be filled by hand and the table built from it.

#include <string>
#include <vector>

#include "control/module.h"
#include "decoding/cell_reading.h"
#include "decoding/grid_setup.h"
#include "decoding/row_bookkeeping.h"
#include "support/export_files_under_test.h"
#include "support/recording_host.h"

namespace vantrel::testing {

struct ModuleFixture {
  ManualEventLoop loop;
  ScriptedPrompts prompts;
  RecordingHost host;
  Control::Module m{host, Services()};

  ModuleFixture() { InitializeControl(m); }

  ControlServices Services() {
    ControlServices services{loop, loop.Clock(), prompts};
    services.exportFiles = &ExportFilesUnderTest();
    return services;
  }

  // Defines trace column `number` and returns it for further settings.
  ColumnDef& Define(int number, int16_t type, int16_t reg, int16_t position,
                    const std::string& caption, const std::string& code, int32_t width = 800) {
    ColumnDef& c = m.description.Columns[static_cast<size_t>(number)];
    c.Defined = -1;
    c.FieldType = type;
    c.RegisterIndex = reg;
    c.Position = position;
    c.Caption = caption;
    c.DisplayCode = code;
    c.Width = width;
    if (number > m.description.ColumnCount)
      m.description.ColumnCount = static_cast<int16_t>(number);
    return c;
  }

  void Build() { BuildGrid(m); }

  // Appends a record row of these texts, each read as the cells of its table column are.
  void AddTextRow(const std::vector<std::string>& texts) {
    CellRow cells;
    for (size_t i = 0; i < texts.size(); ++i) {
      const int column = kFirstTraceColumn + static_cast<int>(i);
      const bool date =
          column < m.grid.ColumnCount() &&
          IsDateKind(ExportKindOfCode(
              m.description.Columns[static_cast<size_t>(m.grid.ColumnData(column))].DisplayCode));
      AppendTextCell(cells, texts[i], m.decimalSeparator, date);
    }
    AddRecordRow(m, cells);
  }
  // Stamps the next rows with the clock's time moved to `hour`:`minute`:`second`.
  void StampAt(int hour, int minute, int second, int day = 15) {
    SetRowStamp(m, DateTime{2026, 11, day, hour, minute, second, 0});
  }
  // The same from "hh:mm:ss".
  void StampAt(const std::string& hhmmss) {
    StampAt(std::stoi(hhmmss.substr(0, 2)), std::stoi(hhmmss.substr(3, 2)),
            std::stoi(hhmmss.substr(6, 2)));
  }
};

}  // namespace vantrel::testing
