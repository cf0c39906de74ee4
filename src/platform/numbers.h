#pragma once
// Lenient and strict number reading of the texts found in description, symbol and value-text
// files, and the round-half-to-even conversions used for every integer taken from them.

#include <cstdint>
#include <optional>
#include <string_view>

namespace vantrel {

// The longest leading numeric prefix of `text`: blanks, tabs and line feeds are skipped
// anywhere in it; an optional sign, digits, a "." fraction and an exponent (E or D); or a
// "&H" (hexadecimal) / "&O" (octal) literal. A text without a numeric prefix reads as 0.
// Hexadecimal and octal literals of up to 16 bits read as signed 16-bit values ("&HFFFF" is
// -1), wider ones as signed 32-bit values.
double Val(std::string_view text);

// Round to the nearest integer, halves to even (0.5 -> 0, 1.5 -> 2, 2.5 -> 2). Throws
// RuntimeError::Overflow() when the result does not fit.
int16_t RoundToInt16(double value);
int32_t RoundToInt32(double value);

// Strict conversion of a whole text to a 16-bit integer: blanks around the number are
// allowed, anything else (an empty text, "16abc") throws RuntimeError::TypeMismatch(); a value
// outside -32768..32767 throws RuntimeError::Overflow().
int16_t StrictToInt16(std::string_view text);

// True when the whole text (blanks around it allowed) is a number. `decimalSeparator` is the
// separator of the locale the text was written in.
bool IsNumeric(std::string_view text, char decimalSeparator = '.');
// The value of a text that IsNumeric accepts, or nothing.
std::optional<double> NumberValue(std::string_view text, char decimalSeparator = '.');

}  // namespace vantrel
