#pragma once
// `vantrel history`: what a record history holds, and a time range of one buffer shown again
// as `vantrel run` printed it or exported as the control exports its table.

#include <string>

namespace vantrel::cli {

struct HistoryOptions {
  std::string file;
  bool list = false;
  std::string key;
  std::string from;
  std::string to;
  std::string format = "text";  // text, biff2, xlsx or csv
  std::string output;
  bool dateColumn = false;
  bool timeColumn = false;
  bool statusColumn = false;
};

// 0 when done, 1 on an error (said on standard error).
int History(const HistoryOptions& options);

}  // namespace vantrel::cli
