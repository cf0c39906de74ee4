#pragma once
// User prompts the control raises: modal message boxes, the yes/no question, the file-open
// dialog and the self-closing shut-down notice. A GUI host shows them; the headless
// implementation records them and answers from a script.

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

enum class MessageIcon { None, Information, Exclamation, Critical, Question };
enum class MessageButtons { Ok, YesNo };
enum class MessageResult { Ok, Yes, No, Cancel };

struct FileOpenRequest {
  std::string title;
  std::string defaultExtension;  // ".vtld"
  std::string filter;            // "Vantrel Files (*.vtl,*.vtld)|*.vtl,*.vtld"
  bool fileMustExist = true;
};

class Prompts {
 public:
  virtual ~Prompts() = default;

  virtual MessageResult ShowMessage(std::string_view text, std::string_view title, MessageIcon icon,
                                    MessageButtons buttons) = 0;
  // The chosen path, or nothing when the user cancelled.
  virtual std::optional<std::string> ChooseFileToOpen(const FileOpenRequest& request) = 0;
  // Shows the modal shut-down notice and returns once it has closed itself after
  // `durationMs` milliseconds.
  virtual void ShowShutDownNotice(std::string_view caption, std::string_view message,
                                  std::string_view command, int durationMs) = 0;
};

}  // namespace vantrel
