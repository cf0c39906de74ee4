#pragma once
// Run modes (0 stop, 1 pause, 2 run, 3 read once), the idle status and the status line.

#include <string_view>

#include "control/module.h"

namespace vantrel {

inline constexpr int16_t kRunStop = 0;
inline constexpr int16_t kRunPause = 1;
inline constexpr int16_t kRunRefresh = 2;
inline constexpr int16_t kRunOnce = 3;

// Shows `text` on the status line.
void ShowStatus(Module& m, std::string_view text);
// While stopped: stops the read timer and shows whether the control is enabled.
void IdleUpdate(Module& m);
// Acts on the stored run mode; falls back to stop when there is nothing to read yet and
// turns "read once" into pause.
void ApplyRunMode(Module& m);
// The RunMode property setter (after the Enabled and same-value checks).
void ChangeRunMode(Module& m, int16_t runMode);
// Called when an answer has brought the reading state back to 3. A host that answers later,
// outside the run-mode logic, would otherwise leave a running control without its read timer.
void ResumeRefresh(Module& m);
// The periodic read timer: the reading cycle's tick and the activity light.
void OnReadTimer(Module& m);
// Leaves the chart view for the table.
void ShowGridView(Module& m);

}  // namespace vantrel
