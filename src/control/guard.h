#pragma once
// Every public operation of the control runs under a guard: a failure that was not trapped
// where it happened is reported to the host through ModulError, never thrown to it.

#include <exception>
#include <string>
#include <string_view>

#include "control/module.h"
#include "platform/runtime_error.h"

namespace vantrel {

template <typename F>
void Guarded(Module& m, std::string_view operation, F&& body) noexcept {
  std::string failure;
  try {
    body();
    return;
  } catch (const RuntimeError& e) {
    failure = e.Description();
  } catch (const std::exception& e) {
    failure = e.what();
  } catch (...) {
    failure = "unknown failure";
  }
  try {
    m.RaiseError(kErrUnexpected, std::string(operation) + " Error : " + failure);
  } catch (...) {  // the host's handler failed too; nothing more can be reported
  }
}

}  // namespace vantrel
