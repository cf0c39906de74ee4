#pragma once
// Loading the trace description after a valid buffer header, and what shows it: the title
// line and the information button.

#include <string>

#include "control/module.h"

namespace vantrel {

// Finds the description named by the buffer key (or the user buffer file) and loads it,
// then prepares the table. False with `errMsg` set when nothing usable was loaded.
bool LoadTraceDescription(Module& m, std::string& errMsg);

// Writes the title line: the description's title and the buffer version, or the notice of
// a simulated buffer.
void ShowTitle(Module& m, bool simulated);

// The information button: the description's information text, or "No info avalaible.".
void ShowInfo(Module& m);

}  // namespace vantrel
