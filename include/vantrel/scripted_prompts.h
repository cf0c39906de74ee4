#pragma once
// Headless prompts: every message box, dialog and notice is recorded; questions and dialogs
// are answered from a queue, and with No / cancel once the queue is empty.

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vantrel/prompts.h"

namespace vantrel {

struct ShownMessage {
  std::string text;
  std::string title;
  MessageIcon icon = MessageIcon::None;
  MessageButtons buttons = MessageButtons::Ok;
};

struct ShownNotice {
  std::string caption;
  std::string message;
  std::string command;
  int durationMs = 0;
};

class ScriptedPrompts : public Prompts {
 public:
  // Answers for the next yes/no questions, in order.
  void QueueAnswer(MessageResult answer) { answers_.push_back(answer); }
  // Answers for the next file dialogs; nothing means "cancelled".
  void QueueFileChoice(std::optional<std::string> path) { files_.push_back(std::move(path)); }
  // Called while a shut-down notice is "shown", with its duration, so that a host or a test
  // can let that much time pass on its clock.
  void SetNoticeWaiter(std::function<void(int)> wait) { wait_ = std::move(wait); }

  const std::vector<ShownMessage>& Messages() const { return messages_; }
  const std::vector<FileOpenRequest>& FileDialogs() const { return dialogs_; }
  const std::vector<ShownNotice>& Notices() const { return notices_; }
  void ClearRecords() {
    messages_.clear();
    dialogs_.clear();
    notices_.clear();
  }

  MessageResult ShowMessage(std::string_view text, std::string_view title, MessageIcon icon,
                            MessageButtons buttons) override;
  std::optional<std::string> ChooseFileToOpen(const FileOpenRequest& request) override;
  void ShowShutDownNotice(std::string_view caption, std::string_view message,
                          std::string_view command, int durationMs) override;

 private:
  std::deque<MessageResult> answers_;
  std::deque<std::optional<std::string>> files_;
  std::function<void(int)> wait_;
  std::vector<ShownMessage> messages_;
  std::vector<FileOpenRequest> dialogs_;
  std::vector<ShownNotice> notices_;
};

}  // namespace vantrel
