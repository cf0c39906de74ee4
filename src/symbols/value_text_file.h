#pragma once
// Reading a value-text file: texts and comments of coded values per application. A file
// counts only for the buffer whose key its [Vantrel] section names, and only from that Key
// line on; value lines apply to the applications declared before them in [Application].

#include <string_view>

#include "symbols/value_texts.h"
#include "vantrel/prompts.h"

namespace vantrel {

// Adds the texts of the file at `path` to `values`. `headerKey` is the key of the buffer
// being shown; the file's Key line must equal it exactly (case counts). A missing file adds
// nothing. A run-time failure (an unreadable file, a value beyond 32 bits) ends the reading,
// keeps what was added before it and is shown in a message box ("ReadText File " and the
// failure's description, title "Vantrel", exclamation icon, Ok button).
void ReadValueTextFile(cValues& values, std::string_view path, std::string_view headerKey,
                       Prompts& prompts);

}  // namespace vantrel
