#pragma once
// Reading a value-text file: texts and comments of coded values per application. A file
// counts only for the buffer whose key its [Vantrel] section names, and only from that Key
// line on.

#include <string_view>

#include "symbols/value_texts.h"
#include "vantrel/prompts.h"

namespace vantrel {

// Adds the file's texts to `values`. A missing file adds nothing; a failure while reading
// is shown in a message box and keeps what was added before it.
void ReadValueTextFile(cValues& values, std::string_view path, std::string_view headerKey,
                       Prompts& prompts);

}  // namespace vantrel
