#pragma once
// Prompts for a command-line host: message boxes go to standard error, the locator's
// question is answered by --yes / --no and its file dialog by --choose.

#include <optional>
#include <string>

#include "vantrel/prompts.h"

namespace vantrel::cli {

class ConsolePrompts : public Prompts {
 public:
  MessageResult answer = MessageResult::No;
  std::optional<std::string> chosenFile;

  MessageResult ShowMessage(std::string_view text, std::string_view title, MessageIcon icon,
                            MessageButtons buttons) override;
  std::optional<std::string> ChooseFileToOpen(const FileOpenRequest& request) override;
  void ShowShutDownNotice(std::string_view caption, std::string_view message,
                          std::string_view command, int durationMs) override;
};

}  // namespace vantrel::cli
