#pragma once
// Checks of the start register word and of the buffer header read from the controller.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "acquisition/buffer_state.h"

namespace vantrel {

// The text reported when the host answers with fewer values than were asked for.
std::string ShortBlockMessage(std::string_view what, size_t received, size_t expected);

// Four characters packed in a word, most significant byte first.
std::string PackedText(int32_t word);

// The start register: where the buffer lies (register or data block) and its first
// register. Sets DBMode and BufferStart; false with `errMsg` set when the word is invalid.
bool CheckStartRegister(int32_t word, BufferState& buffer, std::string& errMsg);

// The buffer header: format key, buffer key, version and length. `header` holds at least
// the words the format needs (8 for "VTL1", 16 for "VTL2"); fields already read stay set
// when a later check fails.
bool CheckHeader(std::span<const int32_t> header, BufferState& buffer, std::string& errMsg);

}  // namespace vantrel
