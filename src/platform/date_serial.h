#pragma once
// Dates and times as spreadsheet serial numbers: days since 30 December 1899, the time of
// day as the fraction. The export reads back the texts the table shows ("dd/mm/yy",
// "hh:mm:ss", or both separated by a blank), so the round trip is exact.

#include <optional>
#include <string_view>

#include "vantrel/clock.h"

namespace vantrel {

// The serial number of a date and time.
double DateSerial(const DateTime& when);

// Reads "dd/mm/yy", "dd/mm/yyyy", "hh:mm", "hh:mm:ss" or a date, blanks and a time; a
// two-digit year below 30 is in the 2000s, from 30 in the 1900s. A time alone is a
// fraction of day 0. Nothing when the text is not a valid date or time.
std::optional<double> DateSerialFromText(std::string_view text);

// The parts of DateSerialFromText, for a date or time known by its fields (a four-digit
// year): nothing when the date is not a valid one or the time not within a day.
std::optional<double> DaySerial(int year, int month, int day);
std::optional<double> TimeOfDaySerial(int hour, int minute, int second);

// The date and time of a serial number, to the nearest second.
DateTime DateTimeFromSerial(double serial);

}  // namespace vantrel
