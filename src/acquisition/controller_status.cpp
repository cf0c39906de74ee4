#include "acquisition/controller_status.h"

namespace vantrel {

std::string PCDStatusTextOf(int32_t status) {
  switch (status) {
    case 0:
      return "Offline";
    case 1:
      return "Disconnect";
    case 2:
      return "Run";
    case 3:
      return "Stop";
    case 4:
      return "Halt";
    case 5:
      return "Conditional Run";
    case 7:
      return "Conditional Stop";
    case 8:
      return "Trace";
    default:
      return "Bad Status";
  }
}

}  // namespace vantrel
