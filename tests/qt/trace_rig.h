#pragma once
// A widget reading the bundled pump-station trace program from registers in memory, as a
// host would: read requests are answered from the registers inside the signal, or on the
// next turn of the event loop through the widget's DataBlock slot. The program writes
// records only when a test says so, and message boxes are recorded, never shown.

#include <QList>
#include <QObject>
#include <QString>

#include "vantrel/clock.h"
#include "vantrel/control.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/qt/vantrel_widget.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel::testing {

class TraceRig {
 public:
  TraceRig();

  // Starts the control and switches it to refreshing; true once it polls the counters.
  bool StartRefreshing();
  // Lets the program write `count` records and waits until the table shows `rows` rows.
  bool WriteAndWait(int count, int rows);
  // The model column whose header reads `caption`, or -1.
  int ModelColumn(const QString& caption) const;
  // The text of a cell as the table shows it.
  QString Cell(int modelRow, int modelColumn) const;

  Control& control() { return widget.control(); }

  ScriptedPrompts prompts;
  SystemClock clock;
  hosts::RegisterSpace space;
  hosts::TraceProgram program;
  qt::VantrelWidget widget;
  // Answer through the DataBlock slot on the next turn instead of inside the request.
  bool answerLater = false;
};

}  // namespace vantrel::testing
