#pragma once
// Reading a record history back from a PostgreSQL server.

#include <memory>
#include <string>

#include "vantrel/history/history_reader.h"

namespace vantrel::history {

// nullptr with `error` set when the URL does not parse, the server cannot be reached, or the
// database holds no Vantrel history or a newer one.
std::unique_ptr<HistoryReader> OpenPostgresHistoryReader(const std::string& url,
                                                         std::string& error);

}  // namespace vantrel::history
