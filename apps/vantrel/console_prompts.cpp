#include "console_prompts.h"

#include <cstdio>

#include "vantrel/encoding.h"

namespace vantrel::cli {

std::string Printable(std::string_view text) {
  std::string out;
  for (char c : Cp1252ToUtf8(text)) {
    if (c == '\r') {
      out += "\\r";
    } else if (c == '\n') {
      out += "\\n";
    } else {
      out.push_back(c);
    }
  }
  return out;
}

MessageResult ConsolePrompts::ShowMessage(std::string_view text, std::string_view title,
                                          MessageIcon, MessageButtons buttons) {
  std::fprintf(stderr, "[%s] %s\n", Printable(title).c_str(), Printable(text).c_str());
  if (buttons == MessageButtons::Ok) return MessageResult::Ok;
  std::fprintf(stderr, "  answered %s\n", answer == MessageResult::Yes ? "Yes" : "No");
  return answer;
}

std::optional<std::string> ConsolePrompts::ChooseFileToOpen(const FileOpenRequest& request) {
  std::fprintf(stderr, "[open file %s] %s\n", Printable(request.filter).c_str(),
               chosenFile ? chosenFile->c_str() : "cancelled");
  return chosenFile;
}

void ConsolePrompts::ShowShutDownNotice(std::string_view caption, std::string_view message,
                                        std::string_view command, int durationMs) {
  std::fprintf(stderr, "[%s] %s (%s, %d ms)\n", Printable(caption).c_str(),
               Printable(message).c_str(), Printable(command).c_str(), durationMs);
}

}  // namespace vantrel::cli
