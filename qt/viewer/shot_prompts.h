#pragma once
// The control's prompts while the viewer takes a screenshot without anyone at the screen:
// a modal box would wait for ever, so each message goes to standard error as one line and
// every question is answered No (the locator then reports that it found no description).

#include "vantrel/prompts.h"

namespace vantrel::viewer {

class ShotPrompts final : public Prompts {
 public:
  MessageResult ShowMessage(std::string_view text, std::string_view title, MessageIcon icon,
                            MessageButtons buttons) override;
  std::optional<std::string> ChooseFileToOpen(const FileOpenRequest& request) override;
  void ShowShutDownNotice(std::string_view caption, std::string_view message,
                          std::string_view command, int durationMs) override;
};

}  // namespace vantrel::viewer
