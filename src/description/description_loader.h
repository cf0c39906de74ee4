#pragma once
// Loading a description file (.vtld, or .vtl) into the trace description: the header keys,
// the table settings, the information text and the columns of every register section.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "description/trace_description.h"
#include "vantrel/prompts.h"

namespace vantrel {

// Where the loader reaches beyond the description file itself.
struct DescriptionSources {
  // Directories searched, in order, for the value-text files the description names:
  // the project directory, the control's own directory, then each resource directory. Empty
  // entries are passed over.
  std::vector<std::string> textFileDirectories;
  // Reads the symbol file; called once per load, on the first column with a "g" display
  // code, after SymbolFileLoaded was set.
  std::function<void()> readSymbolFile;
  // Reads one value-text file (a missing file is no error for the reader).
  std::function<void(const std::string& path)> readValueTextFile;
  // Shows "SearchTextFile Function Error : " when the value-text lookup fails.
  Prompts* prompts = nullptr;
};

// Loads d.DescriptionFile. False with `errMsg` set on failure; the fields read before the
// failure keep their new values, so the description is unusable until a later load succeeds.
// The description is deciphered and parsed in memory; no plain text of it is written to a file.
bool LoadDescription(TraceDescription& d, int16_t headerLengthInForce,
                     const DescriptionSources& sources, std::string& errMsg);

// Reads the value-text files named by a description's TextFile value ("*" patterns allowed)
// from each directory in turn.
void LoadValueTextFiles(const std::string& textFile, const DescriptionSources& sources);

}  // namespace vantrel
