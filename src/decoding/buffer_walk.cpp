// The walk over the controller's ring of records and the loading of the records it finds.
// Until record decoding is wired in, the walk reports no new records.

#include "acquisition/trace_steps.h"

namespace vantrel {

bool WalkBufferCounters(Module& m, std::span<const int32_t> counterArea) {
  (void)m, (void)counterArea;
  return false;
}

bool LoadRecords(Module& m, std::span<const int32_t> records) {
  (void)records;
  m.ErrType = kErrRecords;
  m.ErrMsg = "0 from " + std::to_string(m.buffer.RecordsToRead) + " records loaded.";
  return m.buffer.RecordsToRead == 0;
}

}  // namespace vantrel
