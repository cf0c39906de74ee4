#include "shot_prompts.h"

#include <cstdio>

#include "vantrel/encoding.h"

namespace vantrel::viewer {
namespace {

// A text of the control (Windows-1252, CR and LF line breaks) as one line of UTF-8.
std::string OneLine(std::string_view text) {
  std::string out;
  for (const char c : Cp1252ToUtf8(text)) {
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

}  // namespace

MessageResult ShotPrompts::ShowMessage(std::string_view text, std::string_view title, MessageIcon,
                                       MessageButtons buttons) {
  std::fprintf(stderr, "vantrel-viewer: [%s] %s\n", OneLine(title).c_str(), OneLine(text).c_str());
  if (buttons == MessageButtons::Ok) return MessageResult::Ok;
  std::fprintf(stderr, "vantrel-viewer:   answered No (no one is at the screen)\n");
  return MessageResult::No;
}

std::optional<std::string> ShotPrompts::ChooseFileToOpen(const FileOpenRequest& request) {
  std::fprintf(stderr, "vantrel-viewer: [%s] cancelled (no one is at the screen)\n",
               OneLine(request.title).c_str());
  return std::nullopt;
}

void ShotPrompts::ShowShutDownNotice(std::string_view caption, std::string_view message,
                                     std::string_view, int) {
  std::fprintf(stderr, "vantrel-viewer: [%s] %s\n", OneLine(caption).c_str(),
               OneLine(message).c_str());
}

}  // namespace vantrel::viewer
