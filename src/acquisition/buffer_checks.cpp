#include "acquisition/buffer_checks.h"

#include <cstdlib>

namespace vantrel {
namespace {

constexpr char kCr = '\r';

std::string InvalidBuffer(const char* reason) {
  return std::string("Invalid buffer") + kCr + reason;
}

}  // namespace

std::string ShortBlockMessage(std::string_view what, size_t received, size_t expected) {
  return "DataBlock too short for the " + std::string(what) + ": " + std::to_string(received) +
         " values received, " + std::to_string(expected) + " expected";
}

std::string PackedText(int32_t word) {
  const auto u = static_cast<uint32_t>(word);
  return {static_cast<char>(u >> 24), static_cast<char>((u >> 16) & 0xFF),
          static_cast<char>((u >> 8) & 0xFF), static_cast<char>(u & 0xFF)};
}

bool CheckStartRegister(int32_t word, BufferState& buffer, std::string& errMsg) {
  if (word >= 0 && word < 0x1000000) {
    buffer.DBMode = (word / 65536) == 'D';
    const int32_t start = word % 65536;
    // A low half above 32767 does not fit the 16-bit buffer start.
    if (start <= 8000) {
      buffer.BufferStart = static_cast<int16_t>(start);
      return true;
    }
    if (start <= 32767) buffer.BufferStart = static_cast<int16_t>(start);
  }
  errMsg = InvalidBuffer("Check the start register value");
  return false;
}

bool CheckHeader(std::span<const int32_t> header, BufferState& buffer, std::string& errMsg) {
  buffer.FormatKey = PackedText(header[0]);
  if (buffer.FormatKey == "VTL1") {
    buffer.HeaderLength = 8;
    buffer.RecordReadOffset = 8;
    buffer.CommandWord = 0;
    buffer.ExportIndex = 0;
    buffer.LastCommand = 0;
  } else if (buffer.FormatKey == "VTL2") {
    buffer.HeaderLength = 16;
    buffer.RecordReadOffset = 16;
    // A buffer that changed from "VTL1" to "VTL2" was read with the shorter header.
    if (header.size() < 16) {
      errMsg = ShortBlockMessage("buffer header", header.size(), 16);
      return false;
    }
    buffer.CommandWord = header[8];
    buffer.ExportIndex = header[10];
    // A command already standing in the header is not carried out.
    buffer.LastCommand = header[8];
  } else {
    errMsg = InvalidBuffer("Check the start register value");
    return false;
  }
  buffer.HeaderKey = PackedText(header[1]);
  // The key must be four characters; a NUL byte ends a text early.
  if (buffer.HeaderKey.find('\0') != std::string::npos) {
    buffer.HeaderKey.resize(buffer.HeaderKey.find('\0'));
    errMsg = InvalidBuffer("Bad key value");
    return false;
  }
  buffer.HeaderVersion = header[2] == INT32_MIN ? INT32_MAX : std::abs(header[2]);
  buffer.BufferLen = header[3];
  const int32_t limit = buffer.DBMode ? 16383 : 4096;
  if (buffer.BufferLen < 1 || buffer.BufferLen > limit) {
    errMsg = InvalidBuffer("Bad size value");
    return false;
  }
  return true;
}

}  // namespace vantrel
