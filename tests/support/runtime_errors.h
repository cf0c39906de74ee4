#pragma once
// What a call throws as a run-time error, for tests that check the error a reader traps.

#include <string>

#include "platform/runtime_error.h"

namespace vantrel::testing {

// The number of the run-time error `act` throws, or 0.
template <typename Act>
int ErrorNumberOf(Act act) {
  try {
    act();
  } catch (const RuntimeError& e) {
    return e.Number();
  }
  return 0;
}

// The description of the run-time error `act` throws, or "no error".
template <typename Act>
std::string ErrorOf(Act act) {
  try {
    act();
  } catch (const RuntimeError& e) {
    return e.Description();
  }
  return "no error";
}

}  // namespace vantrel::testing
