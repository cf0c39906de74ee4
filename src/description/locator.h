#pragma once
// Finding the description named by the buffer key in the resource directories, or letting
// the user pick one.

#include <span>
#include <string>
#include <string_view>

#include "vantrel/prompts.h"

namespace vantrel {

// Sets `descriptionFile` and returns 1 when a file was found or chosen, else 0. In each
// directory, in order, a "<name>*.vtld" file is preferred to a "<name>*.vtl" file.
int LocateDescriptionFile(std::string_view name, std::span<const std::string> searchPaths,
                          Prompts& prompts, std::string& descriptionFile);

}  // namespace vantrel
