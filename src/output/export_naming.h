#pragma once
// Names of export files: the default file name added to a name without extension, and the
// three naming modes (0 the name as it is, 1 a time stamp before the extension, 2 the
// controller's export index before the extension).

#include <cstdint>
#include <string>
#include <string_view>

#include "vantrel/clock.h"

namespace vantrel {

inline constexpr std::string_view kDefaultExportName = "Vantrel.xls";

// `exportFile` with `defaultName` appended when no "." follows its last separator (so a
// folder name ending in a separator names that folder's default file).
std::string WithDefaultExportName(std::string exportFile,
                                  std::string_view defaultName = kDefaultExportName);

// "_YYMMDDhhmmss" of `now`.
std::string ExportTimeStamp(const DateTime& now);

// The file an export in naming mode `indexFile` writes to; empty for an unknown mode.
// `exportFile` already carries an extension.
std::string ExportTargetName(std::string_view exportFile, int16_t indexFile, const DateTime& now,
                             int32_t exportIndex);

}  // namespace vantrel
