#pragma once
// Cutting parts out of a register value and turning values into display text.
//
// Registers arrive as signed 32-bit values; every reader takes them unsigned (a negative
// value plus 2^32, so -1 reads as 4294967295). Bytes are numbered 0 (bits 0-7) to 3
// (bits 24-31), nibbles 0 to 7, words 0 (low half) and 1 (high half). Characters made from
// a register come most significant byte first.
//
// A reader that can fail reports a fixed text ("Error in ReadByte function.") through
// `errors` and returns an empty text or 0; nothing is thrown. FormatBinary and
// FormatDialString have no trap of their own: a negative width throws RuntimeError for the
// caller's trap.
//
// The readers sit on the decoder's hot path: they allocate at most the returned string.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/error_sink.h"
#include "vantrel/clock.h"

namespace vantrel {

// Bytes 3, 2, 1, 0 as four characters (character code = byte value, nothing replaced).
// No 32-bit value makes it fail; `errors` is there for the reader's fixed error text.
std::string ReadString(int32_t value, ErrorSink& errors);

// Nibble `index` (0..7) as 0..15; index 8 reads 0; any other index is an error.
int16_t ReadNible(int16_t index, int32_t value, ErrorSink& errors);

// Byte `index` (0..3) as 0..255; index 4 reads 0; any other index is an error.
int16_t ReadByte(int16_t index, int32_t value, ErrorSink& errors);

// Word `index` (0..1) as 0..65535; index 2 reads 0; any other index is an error.
int32_t Read2Bytes(int16_t index, int32_t value, ErrorSink& errors);

// Bytes count-1 down to 0 of `value` (0 .. 2^32-1; a negative value is taken plus 2^32) as
// characters, a code below 32 shown as code 127. Count 4 gives bytes 3, 2, 1, 0; count 1
// byte 0 only; count 5 adds a byte 4 that reads 0 (so code 127) in front; a count below 1
// gives no characters; a count above 5, or a value beyond 32 bits, is an error. Unless
// `raw`, the text is enclosed in single quotes.
std::string ReadASCII(int16_t count, int64_t value, bool raw, ErrorSink& errors);

// A media address: a prefix for the media code in byte 2 ("F ", "R ", "C ", "T ", "I ", "O "
// for 3, 5, 18, 19, 20, 21; none for any other code) and the address in word 0, in decimal.
// An address above 32767, or a value beyond 32 bits, is an error.
std::string ReadMedia(int64_t value, ErrorSink& errors);

// The value's binary digits, taken three per octal digit of its 32-bit pattern, behind
// thirteen zeros, of which the rightmost `width` are kept (so the result may be shorter
// than `width`). Width 16 is split in two groups of 8 by one blank.
std::string FormatBinary(int32_t value, int16_t width);

// A decimal-coded MMDDhhmmss stamp. Letter "h" (any case): hh:mm:ss; "d": DD/MM/YY with YY
// the year of `clock`; any other letter: both, date first. A negative value gives
// "Invalid time".
std::string FormatTimeValue(std::string_view letter, int32_t value, const Clock& clock);

// What a stamp shows, by the letter after "t": the time, the date, or both.
enum class StampShape : uint8_t { Both, TimeOnly, DateOnly };
StampShape StampShapeOf(std::string_view letter);

// FormatTimeValue written into `out`, and the spreadsheet serial that DateSerialFromText reads
// from that text, taken from the stamp's fields (nothing for an invalid date or time).
std::optional<double> AssignTimeValue(std::string& out, StampShape shape, int32_t value,
                                      const Clock& clock);

// The rightmost `width` characters of "000" + `hexadecimal` as a dial string: digits stay,
// A * B # C W D , E + F blank (letters in any case), other characters are dropped.
std::string FormatDialString(int16_t width, std::string_view hexadecimal);

// Bits 11-14, 8-10 and 0-7 of the value taken unsigned, in decimal, as "c/b/a"
// (0x0A05 gives "1/2/5"). No 32-bit value makes it fail; its error text would be the one of
// ReadByte.
std::string FormatSlashedWord(int32_t value, ErrorSink& errors);

}  // namespace vantrel
