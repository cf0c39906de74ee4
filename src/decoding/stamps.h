#pragma once
// Texts of the PC date and time that stamp each row. The export reads them back, so both
// directions live here.

#include <optional>
#include <string>
#include <string_view>

#include "vantrel/clock.h"

namespace vantrel {

// "dd/mm/yy"
std::string FormatStatusDate(const DateTime& now);
// "hh:mm:ss", 24-hour clock
std::string FormatStatusTime(const DateTime& now);

}  // namespace vantrel
