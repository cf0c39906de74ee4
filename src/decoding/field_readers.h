#pragma once
// Cutting parts out of a register value and turning values into display text. Registers
// arrive signed; every reader takes them unsigned (a negative value plus 2^32). Bytes,
// nibbles and words are numbered from the least significant; characters made from a
// register come most significant byte first. Readers that can fail report a fixed text
// through `errors` and return an empty text or 0.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/error_sink.h"
#include "vantrel/clock.h"

namespace vantrel {

// Bytes 3, 2, 1, 0 as four characters.
std::string ReadString(int32_t value, ErrorSink& errors);
// Nibble 0..7 (8 reads 0).
int16_t ReadNible(int16_t index, int32_t value, ErrorSink& errors);
// Byte 0..3 (4 reads 0).
int16_t ReadByte(int16_t index, int32_t value, ErrorSink& errors);
// Word 0..1 (2 reads 0).
int32_t Read2Bytes(int16_t index, int32_t value, ErrorSink& errors);
// The low `count` (1..4) bytes of `value` (0 .. 2^32 - 1) as characters, the most
// significant first; control characters show as code 127. Quoted unless `raw`.
std::string ReadASCII(int16_t count, int64_t value, bool raw, ErrorSink& errors);
// A media address: "R 1200" for media code 5 in byte 2 and address 1200 in the low word.
std::string ReadMedia(int64_t value, ErrorSink& errors);
// The value in binary, the rightmost `width` digits of it behind thirteen zeros; a
// 16-digit result is split in two groups of 8.
std::string FormatBinary(int32_t value, int16_t width);
// A MMDDhhmmss stamp: "h" hh:mm:ss, "d" DD/MM/YY (the year from the PC), else both.
std::string FormatTimeValue(std::string_view letter, int32_t value, const Clock& clock);
// Hexadecimal digits as a telephone dial string (A * B # C W D , E + F blank).
std::string FormatDialString(int16_t width, std::string_view hexadecimal);
// Bits 11-14, 8-10 and 0-7 as "c/b/a".
std::string FormatSlashedWord(int32_t value, ErrorSink& errors);

}  // namespace vantrel
