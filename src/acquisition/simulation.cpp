// Answers to read requests while the control simulates a controller. The simulated buffer
// is not built yet: requests are left unanswered.

#include "acquisition/trace_steps.h"

namespace vantrel {

void AnswerFromSimulation(Module& m, int16_t count) {
  (void)m, (void)count;
}

}  // namespace vantrel
