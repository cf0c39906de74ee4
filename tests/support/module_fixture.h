#pragma once
// A control's module on its own, for tests of the subsystems behind the public interface:
// the trace description can be filled by hand and the table built from it.

#include <string>

#include "control/module.h"
#include "decoding/grid_setup.h"
#include "support/recording_host.h"

namespace vantrel::testing {

struct ModuleFixture {
  ManualEventLoop loop;
  ScriptedPrompts prompts;
  RecordingHost host;
  Control::Module m{host, ControlServices{loop, loop.Clock(), prompts}};

  ModuleFixture() { InitializeControl(m); }

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
};

}  // namespace vantrel::testing
