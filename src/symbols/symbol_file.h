#pragma once
// Reading the symbol list that the controller's programming tool exports:
// "<name> EQU [VOL|RAM] <media> <address> ; comment" lines, inside $GROUP / $ENDGROUP blocks
// whose names prefix the symbol names.

#include <string_view>

#include "symbols/symbol_collection.h"

namespace vantrel {

// The symbols of `symbFile`: empty, without a message, when the path is empty or no file is
// there. Lines that do not fit the syntax are passed over; a run-time failure (an address
// beyond 16 bits) ends the reading and the symbols read before it stay.
cSymbol ReadSymbolFile(std::string_view symbFile);

// The same, adding to `symbols`.
void ReadSymbolFile(cSymbol& symbols, std::string_view symbFile);

}  // namespace vantrel
