#pragma once
// The controller the viewer reads: the embedded virtual controller ("sim", the default).
// A controller is a hosts::ControllerLink; its answers reach the control on the GUI thread
// through `post`, whether the link answers on that thread (the virtual controller) or on a
// worker thread of its own (a network transport).

#include <cstdint>
#include <memory>
#include <string>

#include "vantrel/clock.h"
#include "vantrel/hosts/controller_link.h"
#include "vantrel/hosts/embedded_controller.h"
#include "vantrel/timer.h"
#include "viewer_options.h"

namespace vantrel::viewer {

struct OpenedController {
  std::unique_ptr<hosts::ControllerLink> link;
  // The virtual controller when it was chosen (steered for screenshots), else null.
  hosts::EmbeddedController* embedded = nullptr;
  // The register holding the buffer pointer, unless the command line names another.
  int16_t defaultStartRegister = hosts::TraceProgramConfig{}.startRegister;
  // Whether the controller runs from the start (a remote one says so once it answers).
  bool runningAtStart = true;
};

// Opens the controller `options.controller` names; nothing, with `error` set, when the
// choice is unknown or its program cannot be read. `timers` drive the virtual controller's
// program and must outlive the link.
std::optional<OpenedController> OpenController(const ViewerOptions& options, TimerFactory& timers,
                                               const Clock& clock, hosts::PostToHost post,
                                               hosts::LinkHandlers handlers, std::string& error);

}  // namespace vantrel::viewer
