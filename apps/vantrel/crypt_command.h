#pragma once
// `vantrel crypt`: enciphers description files as the control's Crypt method does.

#include <string>
#include <vector>

namespace vantrel::cli {

// Prints the result text per file; 1 when any file failed.
int Crypt(const std::vector<std::string>& files);

}  // namespace vantrel::cli
