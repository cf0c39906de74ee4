#include "shot_prompts.h"

#include <cstdio>

#include "vantrel/encoding.h"

namespace vantrel::viewer {

MessageResult ShotPrompts::ShowMessage(std::string_view text, std::string_view title, MessageIcon,
                                       MessageButtons buttons) {
  std::fprintf(stderr, "vantrel-viewer: [%s] %s\n", Cp1252ToUtf8Line(title).c_str(),
               Cp1252ToUtf8Line(text).c_str());
  if (buttons == MessageButtons::Ok) return MessageResult::Ok;
  std::fprintf(stderr, "vantrel-viewer:   answered No (no one is at the screen)\n");
  return MessageResult::No;
}

std::optional<std::string> ShotPrompts::ChooseFileToOpen(const FileOpenRequest& request) {
  std::fprintf(stderr, "vantrel-viewer: [%s] cancelled (no one is at the screen)\n",
               Cp1252ToUtf8Line(request.title).c_str());
  return std::nullopt;
}

void ShotPrompts::ShowShutDownNotice(std::string_view caption, std::string_view message,
                                     std::string_view, int) {
  std::fprintf(stderr, "vantrel-viewer: [%s] %s\n", Cp1252ToUtf8Line(caption).c_str(),
               Cp1252ToUtf8Line(message).c_str());
}

}  // namespace vantrel::viewer
