#include "symbols/value_text_file.h"

#include <string>
#include <vector>

#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "platform/text_file.h"

namespace vantrel {
namespace {

struct TextAndComment {
  std::string text;
  std::string comment;
};

TextAndComment SplitText(std::string_view afterEquals) {
  const size_t semicolon = afterEquals.find(';');
  if (semicolon == std::string_view::npos) return {std::string(TrimBlanks(afterEquals)), {}};
  return {std::string(TrimBlanks(afterEquals.substr(0, semicolon))),
          std::string(TrimBlanks(afterEquals.substr(semicolon + 1)))};
}

class ValueTextReader {
 public:
  ValueTextReader(cValues& values, std::string_view headerKey)
      : values_(values), headerKey_(headerKey) {}

  void Line(std::string line) {
    for (char& c : line) {
      if (c == '\t') c = ' ';
    }
    const std::string_view text = TrimBlanks(line);
    if (text.empty()) return;
    if (text.front() == '[') {
      const size_t close = text.find(']');
      section_ =
          close == std::string_view::npos ? std::string() : std::string(text.substr(1, close - 1));
      return;
    }
    if (text.front() == ';' || section_.empty()) return;
    const size_t equals = text.find('=');
    if (!keyMatched_) {
      // Only this buffer's Key line opens the file.
      if (IEquals(section_, "Vantrel") && IStartsWith(text, "Key") &&
          equals != std::string_view::npos) {
        const std::string_view value = text.substr(equals + 1);
        keyMatched_ = TrimBlanks(value.substr(0, value.find(';'))) == headerKey_;
      }
      return;
    }
    if (equals == std::string_view::npos) return;
    const TextAndComment item = SplitText(text.substr(equals + 1));
    if (IEquals(section_, "Application")) {
      const std::string appId(text.substr(0, equals));
      values_.Add(appId, "Application", 0, item.text, item.comment);
      applications_.push_back(appId);
      return;
    }
    const int32_t value = RoundToInt32(Val(text.substr(0, equals)));
    for (const std::string& appId : applications_) {
      values_.Add(appId, section_, value, item.text, item.comment);
    }
  }

 private:
  cValues& values_;
  std::string_view headerKey_;
  std::string section_;
  bool keyMatched_ = false;
  std::vector<std::string> applications_;
};

}  // namespace

void ReadValueTextFile(cValues& values, std::string_view path, std::string_view headerKey,
                       Prompts& prompts) {
  if (!FileExists(path)) return;
  try {
    const auto lines = ReadTextLines(path);
    if (!lines) throw RuntimeError::PathFileAccess();
    ValueTextReader reader(values, headerKey);
    for (const std::string& line : *lines)
      reader.Line(line);
  } catch (const RuntimeError& e) {
    prompts.ShowMessage("ReadText File " + e.Description(), "Vantrel", MessageIcon::Exclamation,
                        MessageButtons::Ok);
  }
}

}  // namespace vantrel
