#include "console_prompts.h"

#include <cstdio>

#include "vantrel/encoding.h"

namespace vantrel::cli {

MessageResult ConsolePrompts::ShowMessage(std::string_view text, std::string_view title,
                                          MessageIcon, MessageButtons buttons) {
  std::fprintf(stderr, "[%s] %s\n", Cp1252ToUtf8Line(title).c_str(),
               Cp1252ToUtf8Line(text).c_str());
  if (buttons == MessageButtons::Ok) return MessageResult::Ok;
  std::fprintf(stderr, "  answered %s\n", answer == MessageResult::Yes ? "Yes" : "No");
  return answer;
}

std::optional<std::string> ConsolePrompts::ChooseFileToOpen(const FileOpenRequest& request) {
  std::fprintf(stderr, "[open file %s] %s\n", Cp1252ToUtf8Line(request.filter).c_str(),
               chosenFile ? chosenFile->c_str() : "cancelled");
  return chosenFile;
}

void ConsolePrompts::ShowShutDownNotice(std::string_view caption, std::string_view message,
                                        std::string_view command, int durationMs) {
  std::fprintf(stderr, "[%s] %s (%s, %d ms)\n", Cp1252ToUtf8Line(caption).c_str(),
               Cp1252ToUtf8Line(message).c_str(), Cp1252ToUtf8Line(command).c_str(), durationMs);
}

}  // namespace vantrel::cli
