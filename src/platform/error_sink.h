#pragma once
// Where trapped errors of the small reader functions go: the control forwards them to the
// host as ModulError; tests collect them.

#include <string_view>

namespace vantrel {

class ErrorSink {
 public:
  virtual ~ErrorSink() = default;
  virtual void ReportError(std::string_view text) = 0;
};

}  // namespace vantrel
