#include "symbols/value_text_file.h"

#include <algorithm>
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

// "text;comment", both trimmed; no ";" means no comment.
TextAndComment SplitTextAndComment(std::string_view afterEquals) {
  const size_t semicolon = afterEquals.find(';');
  if (semicolon == std::string_view::npos) return {std::string(TrimBlanks(afterEquals)), {}};
  return {std::string(TrimBlanks(afterEquals.substr(0, semicolon))),
          std::string(TrimBlanks(afterEquals.substr(semicolon + 1)))};
}

class ValueTextReader {
 public:
  ValueTextReader(cValues& values, std::string_view headerKey)
      : values_(values), headerKey_(headerKey) {}

  void Line(std::string& raw) {
    std::replace(raw.begin(), raw.end(), '\t', ' ');
    const std::string_view line = TrimBlanks(raw);
    if (line.empty()) return;
    if (line.front() == '[') {
      // A header without "]" names no section: the lines under it count for nothing.
      const size_t close = line.find(']');
      section_ =
          close == std::string_view::npos ? std::string() : std::string(line.substr(1, close - 1));
      return;
    }
    if (line.front() == ';' || section_.empty()) return;
    const size_t equals = line.find('=');
    if (!keyMatched_) {
      KeyLine(line, equals);
      return;
    }
    if (equals == std::string_view::npos) return;
    const TextAndComment item = SplitTextAndComment(line.substr(equals + 1));
    if (IEquals(section_, "Application")) {
      ApplicationLine(line.substr(0, equals), item);
    } else {
      ValueLine(RoundToInt32(Val(line.substr(0, equals))), item);
    }
  }

 private:
  // Until this buffer's Key line has been seen only [Vantrel] is looked at.
  void KeyLine(std::string_view line, size_t equals) {
    if (!IEquals(section_, "Vantrel") || !IStartsWith(line, "Key")) return;
    if (equals == std::string_view::npos) return;
    const std::string_view value = line.substr(equals + 1);
    keyMatched_ = TrimBlanks(value.substr(0, value.find(';'))) == headerKey_;
  }

  void ApplicationLine(std::string_view appId, const TextAndComment& item) {
    values_.Add(appId, "Application", 0, item.text, item.comment);
    // The declared applications are kept as one comma-joined list; an id that contains a
    // comma therefore counts as several when value lines fan out.
    if (applicationList_.empty()) {
      applicationList_ = appId;
    } else {
      applicationList_ += ',';
      applicationList_ += appId;
    }
    applications_.clear();
    if (applicationList_.empty()) return;
    std::string_view rest = applicationList_;
    for (;;) {
      const size_t comma = rest.find(',');
      applications_.emplace_back(rest.substr(0, comma));
      if (comma == std::string_view::npos) break;
      rest.remove_prefix(comma + 1);
    }
  }

  void ValueLine(int32_t value, const TextAndComment& item) {
    for (const std::string& appId : applications_) {
      values_.Add(appId, section_, value, item.text, item.comment);
    }
  }

  cValues& values_;
  std::string_view headerKey_;
  std::string section_;
  bool keyMatched_ = false;
  std::string applicationList_;
  std::vector<std::string> applications_;  // applicationList_ split at ","
};

}  // namespace

void ReadValueTextFile(cValues& values, std::string_view path, std::string_view headerKey,
                       Prompts& prompts) {
  if (!FileExists(path)) return;
  try {
    auto lines = ReadTextLines(path);
    if (!lines) throw RuntimeError::PathFileAccess();
    ValueTextReader reader(values, headerKey);
    for (std::string& line : *lines) {
      reader.Line(line);
    }
  } catch (const RuntimeError& e) {
    prompts.ShowMessage("ReadText File " + e.Description(), "Vantrel", MessageIcon::Exclamation,
                        MessageButtons::Ok);
  }
}

}  // namespace vantrel
