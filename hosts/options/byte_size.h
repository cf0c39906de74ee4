#pragma once
// Sizes given on the command line, such as the spool limit of a PostgreSQL history.

#include <cstdint>
#include <optional>
#include <string_view>

namespace vantrel::hosts {

// "64M", "512K", "1G" or a number of bytes; nullopt for anything else.
std::optional<uint64_t> ParseByteSize(std::string_view text);

}  // namespace vantrel::hosts
