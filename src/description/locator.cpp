#include "description/locator.h"

#include "description/directory_search.h"
#include "description/profile_file.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace vantrel {
namespace {

// The first file of `directory` named `name`, anything, then `extension`. The name is taken
// literally: a key holding wildcard characters or separators matches nothing unexpected.
std::string FirstMatch(const std::string& directory, std::string_view name,
                       std::string_view extension) {
  std::string pattern = "*";
  pattern += extension;
  for (const std::string& file : FindFiles(directory, pattern)) {
    if (IStartsWith(file, name) && file.size() >= name.size() + extension.size() &&
        FileExists(directory + file)) {
      return file;
    }
  }
  return {};
}

}  // namespace

int LocateDescriptionFile(std::string_view name, std::span<const std::string> searchPaths,
                          Prompts& prompts, std::string& descriptionFile) {
  descriptionFile.clear();
  const bool usableName = name.find_first_of("/\\") == std::string_view::npos;
  for (const std::string& entry : searchPaths) {
    if (entry.empty() || !usableName) continue;
    const std::string directory = AddTrailingSeparator(entry);
    for (const char* extension : {".vtld", ".vtl"}) {
      const std::string file = FirstMatch(directory, name, extension);
      if (!file.empty()) {
        descriptionFile = directory + file;
        return 1;
      }
    }
  }
  const std::string question =
      "The file " + std::string(name) + ".vtld" + " was not found.\n\nDo you want to search it  ?";
  if (prompts.ShowMessage(question, "Vantrel", MessageIcon::Exclamation, MessageButtons::YesNo) !=
      MessageResult::Yes) {
    return 0;
  }
  // No dialog title: the host shows its own default for an open dialog.
  const auto chosen =
      prompts.ChooseFileToOpen({"", ".vtld", "Vantrel Files (*.vtl,*.vtld)|*.vtl,*.vtld", true});
  if (chosen && FileExists(*chosen)) descriptionFile = *chosen;
  return descriptionFile.empty() ? 0 : 1;
}

}  // namespace vantrel
