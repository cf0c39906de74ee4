// Record decoding needs the field readers; until they are built in, no record decodes.

#include "decoding/record_decoder.h"

namespace vantrel {

bool DecodeRecord(Module& m, std::span<const int32_t> registers, size_t first) {
  (void)m, (void)registers, (void)first;
  return false;
}

}  // namespace vantrel
