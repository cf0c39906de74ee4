#pragma once
// `vantrel check`: loads a description or user buffer file as the control would and prints
// the trace description it yields, or the loader's error.

#include <optional>
#include <string>

namespace vantrel::cli {

struct CheckOptions {
  std::string file;
  std::optional<std::string> key;  // the buffer's key: needed for a user buffer file
  std::string symbols;
  std::string projectPath;
  std::string resourcePath;
  bool json = false;
};

// 0 when the file loads, 1 when it does not (the error on standard error, or as JSON).
int Check(const CheckOptions& options);

}  // namespace vantrel::cli
