#include "vantrel/scripted_prompts.h"

namespace vantrel {

MessageResult ScriptedPrompts::ShowMessage(std::string_view text, std::string_view title,
                                           MessageIcon icon, MessageButtons buttons) {
  messages_.push_back({std::string(text), std::string(title), icon, buttons});
  if (buttons == MessageButtons::Ok) return MessageResult::Ok;
  if (answers_.empty()) return MessageResult::No;
  const MessageResult answer = answers_.front();
  answers_.pop_front();
  return answer;
}

std::optional<std::string> ScriptedPrompts::ChooseFileToOpen(const FileOpenRequest& request) {
  dialogs_.push_back(request);
  if (files_.empty()) return std::nullopt;
  auto choice = std::move(files_.front());
  files_.pop_front();
  return choice;
}

void ScriptedPrompts::ShowShutDownNotice(std::string_view caption, std::string_view message,
                                         std::string_view command, int durationMs) {
  notices_.push_back(
      {std::string(caption), std::string(message), std::string(command), durationMs});
  if (wait_) wait_(durationMs);
}

}  // namespace vantrel
