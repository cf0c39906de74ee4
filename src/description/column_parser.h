#pragma once
// The column lines of one register section: "<type><position>=<column>,<width>,<caption>,
// %<display code> <value texts>", each filling the definition of the grid column it names.

#include <functional>
#include <string>
#include <string_view>

#include "description/profile_file.h"
#include "description/trace_description.h"

namespace vantrel {

inline constexpr size_t kMaxValueTexts = 2048;

// Parses section `prefix` + `registerNumber`. False with `errMsg` set when the section is too
// big, a line cannot be read, or a limit is passed. `readSymbolFile` is called on the first
// symbol column of a load.
bool ParseRegisterSection(TraceDescription& d, const ProfileFile& file, std::string_view prefix,
                          int registerNumber, const std::function<void()>& readSymbolFile,
                          std::string& errMsg);

}  // namespace vantrel
