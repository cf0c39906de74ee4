#pragma once
// What the reading cycle knows of the trace buffer in the controller, the counters of its
// walk over the controller's ring of records, and the numbers of the errors it reports.

#include <cstdint>
#include <string>

namespace vantrel {

// ModulError numbers.
inline constexpr int16_t kErrStartOrDescription = 10;
inline constexpr int16_t kErrHeader = 11;
inline constexpr int16_t kErrRecords = 12;
inline constexpr int16_t kErrFieldReader = 13;
inline constexpr int16_t kErrUnexpected = 99;

// Reading states.
inline constexpr int16_t kStateDisabled = 0;
inline constexpr int16_t kStateWaitStart = 1;
inline constexpr int16_t kStateHeader = 2;
inline constexpr int16_t kStateRunning = 3;
inline constexpr int16_t kStateLoading = 4;

struct BufferState {
  // -1 until the control's initialisation sets it to 0, so that creation reports Status(0).
  int16_t ReadState = -1;
  int16_t BufferStart = 0;
  bool DBMode = false;
  int16_t HeaderLength = 16;
  std::string FormatKey;
  std::string HeaderKey;
  int32_t HeaderVersion = 0;
  int32_t BufferLen = 0;
  int16_t RecordReadOffset = 0;
  int16_t RecordsToRead = 0;
  int16_t ReadCount = 0;
  int32_t RequestOffset = 0;
  int32_t RequestLength = 0;
  // A request event has been raised and its DataBlock has not come yet. The read timer does
  // not ask again meanwhile, so that a slow host's answer is never taken for another read.
  bool AnswerPending = false;
  int16_t TicksWaiting = 0;
  int32_t LastWord = 0;
  int32_t CommandWord = 0;
  int32_t LastCommand = 0;
  int32_t ExportIndex = 0;
};

struct WalkCounters {
  int32_t BufferCounter = 0;
  int32_t LastBufferCounter = 0;
  int32_t WriteIndex = 0;
  int32_t RecordNumber = 0;
  int16_t LastIndex = 0;
  bool FirstRead = true;
};

}  // namespace vantrel
