#pragma once
// Commands that steer a running trace program from outside, one per line of text, so that
// faults can be forced by hand or by a test:
//   burst N     write N records at once (more than the ring holds is an overrun)
//   restart     the counter and the write index go back to 0
//   pause       write nothing until resumed
//   resume
//   command N   set the command word of the header (1 clear, 8 export, 9 shut down)

#include <string>
#include <string_view>

#include "vantrel/hosts/trace_program.h"

namespace vantrel::hosts {

struct CommandReply {
  bool ok = false;
  std::string text;  // what was done, or what is wrong with the line
};

CommandReply RunProgramCommand(TraceProgram& program, std::string_view line);

}  // namespace vantrel::hosts
