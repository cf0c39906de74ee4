#include "vantrel/hosts/embedded_controller.h"

namespace vantrel::hosts {

EmbeddedController::EmbeddedController(TimerFactory& timers, const Clock& clock, PostToHost post,
                                       ProgramFile program, LinkHandlers handlers)
    : program_(space_, std::move(program.program), clock),
      post_(std::move(post)),
      handlers_(std::move(handlers)),
      recordTimer_(timers.CreateTimer()) {
  program_.Install();
  recordTimer_->SetInterval(program.recordIntervalMs);
  recordTimer_->SetTickHandler([this] { program_.WriteRecords(1); });
  recordTimer_->SetEnabled(true);
}

void EmbeddedController::ReadRegisters(int32_t first, int32_t count) {
  Answer(space_.ReadRegisters(first, count));
}

void EmbeddedController::ReadDataBlock(int32_t block, int32_t offset, int32_t count) {
  Answer(space_.ReadDataBlock(block, offset, count));
}

void EmbeddedController::Answer(std::vector<int32_t> words) {
  // The words are taken now, as the controller holds them at the request.
  post_([this, words = std::move(words)]() mutable {
    if (handlers_.answer) handlers_.answer(std::move(words));
  });
}

}  // namespace vantrel::hosts
