#pragma once
// Reading the controller program's symbol file: "<name> EQU <media> <address> ; comment"
// lines, inside $GROUP / $ENDGROUP blocks that prefix the names.

#include <string_view>

#include "symbols/symbol_collection.h"

namespace vantrel {

// The symbols of `symbFile`; empty when the path is empty or the file missing. A line that
// cannot be read ends the reading; the symbols before it stay.
cSymbol ReadSymbolFile(std::string_view symbFile);

}  // namespace vantrel
