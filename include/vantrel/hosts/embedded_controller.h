#pragma once
// The virtual controller inside the host's process: a trace program that writes a record on
// every tick of its own timer, and a link that answers from its registers on the host's next
// turn, as a transport would.

#include <memory>

#include "vantrel/clock.h"
#include "vantrel/hosts/controller_link.h"
#include "vantrel/hosts/program_file.h"
#include "vantrel/hosts/register_space.h"
#include "vantrel/hosts/trace_program.h"
#include "vantrel/timer.h"

namespace vantrel::hosts {

class EmbeddedController final : public ControllerLink {
 public:
  EmbeddedController(TimerFactory& timers, const Clock& clock, PostToHost post, ProgramFile program,
                     LinkHandlers handlers);

  void ReadRegisters(int32_t first, int32_t count) override;
  void ReadDataBlock(int32_t block, int32_t offset, int32_t count) override;

  TraceProgram& Program() { return program_; }
  RegisterSpace& Space() { return space_; }

 private:
  void Answer(std::vector<int32_t> words);

  RegisterSpace space_;
  TraceProgram program_;
  PostToHost post_;
  LinkHandlers handlers_;
  std::unique_ptr<Timer> recordTimer_;
};

}  // namespace vantrel::hosts
