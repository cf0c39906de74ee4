// The export is not built yet: the export button leaves the table as it is.

#include "output/output_steps.h"

namespace vantrel {

void ExportFromButton(Module& m) {
  (void)m;
}

}  // namespace vantrel
