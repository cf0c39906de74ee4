// Loading the trace description after a valid buffer header. Until the description files
// can be located and loaded, every header ends here as when no description file is found.

#include "acquisition/trace_steps.h"

namespace vantrel {

bool LoadTraceDescription(Module& m) {
  m.ErrMsg = "No description file from driver found (*.vtl)";
  return false;
}

}  // namespace vantrel
