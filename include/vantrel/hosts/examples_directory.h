#pragma once
// Where the bundled example files (the pump station's description, symbols and value texts)
// are: beside an installed program in ../share/vantrel/examples, else in the source tree the
// program was built from.

#include <string>

namespace vantrel::hosts {

std::string ExamplesDirectory();

}  // namespace vantrel::hosts
