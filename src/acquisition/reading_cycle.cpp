#include "acquisition/reading_cycle.h"

#include <algorithm>
#include <optional>

#include "acquisition/buffer_checks.h"
#include "acquisition/string_columns.h"

namespace vantrel {
namespace {

constexpr int16_t kTicksBeforeAskingAgain = 5;
// The simulated buffer has an 8-word header in front of its ring.
constexpr int16_t kSimulatedHeaderLength = 8;

int16_t Offset16(int32_t start, int32_t offset) {
  // Register numbers are 16-bit on the event interface; they wrap as the protocol does.
  return static_cast<int16_t>(static_cast<uint16_t>(start + offset));
}

// The walk skips any statement that fails: a missing element or a value that does not fit
// its field leaves the field as it was.
std::optional<int32_t> Element(std::span<const int32_t> block, size_t index) {
  if (index >= block.size()) return std::nullopt;
  return block[index];
}

void Store16(int16_t& field, int64_t value) {
  if (value >= INT16_MIN && value <= INT16_MAX) field = static_cast<int16_t>(value);
}

void Store32(int32_t& field, int64_t value) {
  if (value >= INT32_MIN && value <= INT32_MAX) field = static_cast<int32_t>(value);
}

}  // namespace

std::string ReadingCycle::StatusText(int16_t state) const {
  switch (state) {
    case kStateDisabled:
      return "Disabled";
    case kStateWaitStart:
      return "Wait start register";
    case kStateHeader:
      return "Stoped";
    case kStateRunning:
      return "Refresh mode runing";
    case kStateLoading: {
      const int32_t toRead = buffer_.RecordsToRead;
      const int32_t shown = toRead != walk_.RecordNumber ? toRead : toRead - 1;
      return "Loading " + std::to_string(shown) + " records";
    }
    default:
      return {};
  }
}

void ReadingCycle::SetState(int16_t state) {
  if (state == buffer_.ReadState) return;
  buffer_.ReadState = state;
  owner_.ReadStateChanged(state, StatusText(state));
}

void ReadingCycle::ResetWalk() {
  walk_.BufferCounter = 0;
  walk_.LastBufferCounter = 0;
  walk_.WriteIndex = 0;
  walk_.LastIndex = 0;
  walk_.RecordNumber = 0;
  buffer_.RecordsToRead = 0;
}

void ReadingCycle::ResetBuffer() {
  description_.DescriptionFile.clear();
  buffer_.FormatKey.clear();
  buffer_.HeaderKey.clear();
  description_.CounterIndex = 0;
  buffer_.HeaderVersion = 0;
  buffer_.BufferLen = 0;
  buffer_.RecordReadOffset = 0;
  description_.RecordLength = 0;
  ResetWalk();
  walk_.FirstRead = true;
}

void ReadingCycle::Fail(int16_t errType, std::string message) {
  errType_ = errType;
  errMsg_ = std::move(message);
  owner_.RaiseError(errType_, errMsg_);
}

void ReadingCycle::RequestRead(int16_t count) {
  if (settings_.simulation) {
    AnswerFromSimulation(count);
    return;
  }
  BufferState& b = buffer_;
  if (b.ReadState >= kStateWaitStart && b.ReadState <= kStateLoading) {
    // Set before the event: a host answering inside it clears the flag again.
    b.AnswerPending = true;
    b.TicksWaiting = 0;
  }
  switch (b.ReadState) {
    case kStateWaitStart:
      b.RequestOffset = 0;
      b.RequestLength = 1;
      owner_.ReadRegisters(settings_.startRegister, 1);
      break;
    case kStateHeader:
    case kStateRunning:
    case kStateLoading: {
      const int32_t offset = b.ReadState == kStateHeader    ? 0
                             : b.ReadState == kStateRunning ? description_.CounterIndex
                                                            : b.RecordReadOffset;
      b.RequestOffset = offset;
      b.RequestLength = count;
      if (b.DBMode) {
        owner_.ReadDataBlock(b.BufferStart, static_cast<int16_t>(offset), count);
      } else {
        owner_.ReadRegisters(Offset16(b.BufferStart, offset), count);
      }
      break;
    }
    default:
      break;
  }
}

void ReadingCycle::RequestRecords() {
  const int32_t count = int32_t{description_.RecordLength} * buffer_.RecordsToRead;
  buffer_.ReadCount = static_cast<int16_t>(count);
  RequestRead(static_cast<int16_t>(count));
}

void ReadingCycle::TakeDataBlock(std::span<const int32_t> block) {
  buffer_.AnswerPending = false;
  switch (buffer_.ReadState) {
    case kStateWaitStart:
      TakeStartRegister(block);
      break;
    case kStateHeader:
      TakeHeader(block);
      break;
    case kStateRunning:
      TakeCounterArea(block);
      break;
    case kStateLoading:
      TakeRecords(block);
      break;
    default:
      break;
  }
}

void ReadingCycle::TakeStartRegister(std::span<const int32_t> block) {
  if (block.empty()) {
    errMsg_ = ShortBlockMessage("start register", 0, 1);
  } else if (CheckStartRegister(block[0], buffer_, errMsg_)) {
    buffer_.HeaderLength = 16;
    description_.CounterIndex = 4;
    SetState(kStateHeader);
    return;
  }
  Fail(kErrStartOrDescription, errMsg_);
}

void ReadingCycle::FailHeader() {
  Fail(kErrHeader, errMsg_);
  ResetWalk();
  SetState(kStateHeader);
}

void ReadingCycle::TakeHeader(std::span<const int32_t> block) {
  const auto needed = static_cast<size_t>(buffer_.HeaderLength);
  if (block.size() < needed || needed < 4) {
    errMsg_ = ShortBlockMessage("buffer header", block.size(), needed);
    FailHeader();
    return;
  }
  buffer_.LastWord = block[needed - 1];
  owner_.HeaderArrived();
  if (!CheckHeader(block, buffer_, errMsg_)) {
    FailHeader();
    return;
  }
  if (!owner_.LoadDescription(errMsg_)) {
    Fail(kErrStartOrDescription, errMsg_);
    return;
  }
  ResolveStringColumns(description_, block);
  SetState(kStateRunning);
  owner_.ResumeRefresh();
}

void ReadingCycle::TakeCounterArea(std::span<const int32_t> block) {
  const int32_t counterIndex = description_.CounterIndex;
  if (counterIndex < 1 || block.size() < static_cast<size_t>(counterIndex)) {
    Fail(kErrRecords, ShortBlockMessage("counter area", block.size(),
                                        static_cast<size_t>(std::max<int32_t>(counterIndex, 1))));
    return;
  }
  buffer_.LastWord = block[static_cast<size_t>(counterIndex - 1)];
  if (std::string problem = CounterAreaProblem(block); !problem.empty()) {
    errType_ = kErrRecords;
    errMsg_ = "Invalid counter area\r" + problem;
    StopOnFailure();
    return;
  }
  if (WalkCounterArea(block)) SetState(kStateLoading);
}

std::string ReadingCycle::CounterAreaProblem(std::span<const int32_t> block) const {
  // Words missing from a short block keep their last values, as in the walk.
  const int64_t ring = block.size() > 3 ? block[3] : walk_.RecordNumber;
  const int64_t writeIndex = block.size() > 1 ? block[1] : walk_.WriteIndex;
  if (ring < 1) return "Ring size " + std::to_string(ring) + " is below 1";
  if (writeIndex < 0 || writeIndex >= ring) {
    return "Write index " + std::to_string(writeIndex) + " lies outside the ring of " +
           std::to_string(ring) + " records";
  }
  // A buffer length of 0: no header read yet (reading once straight after the pointer).
  const int64_t end = int64_t{buffer_.HeaderLength} + ring * description_.RecordLength;
  if (buffer_.BufferLen > 0 && end > buffer_.BufferLen) {
    return "Ring size " + std::to_string(ring) + " does not fit the buffer of " +
           std::to_string(buffer_.BufferLen) + " words";
  }
  return {};
}

void ReadingCycle::TakeRecords(std::span<const int32_t> block) {
  if (LoadRecords(block)) {
    SetState(kStateRunning);
    owner_.ResumeRefresh();
    return;
  }
  StopOnFailure();
}

void ReadingCycle::OnReadTimer() {
  BufferState& b = buffer_;
  // A request still unanswered after a few ticks is taken as lost and asked again.
  const bool waiting = b.AnswerPending && ++b.TicksWaiting < kTicksBeforeAskingAgain;
  if (!waiting && b.ReadState == kStateRunning) {
    const auto counterRead = static_cast<int16_t>(description_.CounterIndex + 8);
    b.ReadCount = counterRead;
    RequestRead(counterRead);
  }
  // In state 4 either a synchronous host has just answered the counter read, or a later
  // answer left the records to be fetched on this tick.
  if (!waiting && b.ReadState == kStateLoading) RequestRecords();
}

void ReadingCycle::PlanNewRecords(int64_t fresh) {
  WalkCounters& w = walk_;
  BufferState& b = buffer_;
  const int64_t headerLength = b.HeaderLength;
  const int64_t recordLength = description_.RecordLength;
  const int64_t lastIndex = w.LastIndex;
  if (fresh <= 0) {
    b.RecordsToRead = 0;
  } else if (fresh <= lastIndex + 1) {
    // All new records lie before the write slot.
    Store16(b.RecordsToRead, fresh);
    Store16(b.RecordReadOffset, headerLength + recordLength * (lastIndex + 1 - fresh));
  } else if (fresh <= int64_t{w.RecordNumber} - 1) {
    // The new records wrap round the end of the ring: read the part at the end now and the
    // part at the start at the next poll.
    const int64_t tail = fresh - (lastIndex + 1);
    const int64_t room = int64_t{w.RecordNumber} - w.WriteIndex;
    Store16(b.RecordsToRead, tail <= room ? tail : room);
    Store16(b.RecordReadOffset, headerLength + recordLength * (w.RecordNumber - tail));
    Store32(w.BufferCounter, int64_t{w.LastBufferCounter} + tail);
  } else {
    // The ring overran: what was overwritten is lost; reload the whole ring.
    owner_.RecordsMissed(fresh - w.RecordNumber + 1);
    Store16(b.RecordsToRead, w.RecordNumber);
    b.RecordReadOffset = b.HeaderLength;
  }
}

bool ReadingCycle::WalkCounterArea(std::span<const int32_t> counterArea) {
  WalkCounters& w = walk_;
  BufferState& b = buffer_;
  if (auto counter = Element(counterArea, 0)) {
    // A negative counter has 2^31 added: the controller counts in 31 bits.
    w.BufferCounter =
        *counter < 0 ? static_cast<int32_t>(int64_t{*counter} + 2147483648LL) : *counter;
  }
  if (w.LastBufferCounter > w.BufferCounter) {
    owner_.CounterRestarted();
    ResetWalk();
    return false;
  }
  if (auto index = Element(counterArea, 1)) w.WriteIndex = *index;
  if (auto capacity = Element(counterArea, 3)) w.RecordNumber = *capacity;
  if (b.FormatKey == "VTL2") {
    if (auto command = Element(counterArea, 4)) b.CommandWord = *command;
    if (auto exportIndex = Element(counterArea, 6)) b.ExportIndex = *exportIndex;
    if (b.CommandWord != b.LastCommand) {
      b.LastCommand = b.CommandWord;
      owner_.CommandChanged(b.CommandWord);
    }
  }
  Store16(w.LastIndex, w.WriteIndex == 0 ? int64_t{w.RecordNumber} - 1 : int64_t{w.WriteIndex} - 1);

  if (w.BufferCounter == w.LastBufferCounter) {
    b.RecordsToRead = 0;
  } else if (w.LastBufferCounter == 0 && w.FirstRead) {
    // The first poll loads the history: the slots written so far, or the whole ring.
    w.FirstRead = false;
    Store16(b.RecordsToRead, w.BufferCounter <= w.WriteIndex ? w.BufferCounter : w.RecordNumber);
  } else {
    PlanNewRecords(int64_t{w.BufferCounter} - w.LastBufferCounter);
  }
  w.LastBufferCounter = w.BufferCounter;
  return b.RecordsToRead > 0;
}

bool ReadingCycle::LoadRecords(std::span<const int32_t> records) {
  const int32_t n = buffer_.RecordsToRead;
  const int32_t recordNumber = walk_.RecordNumber;
  const int32_t lastIndex = walk_.LastIndex;
  const size_t recordLength = static_cast<size_t>(std::max<int16_t>(description_.RecordLength, 0));
  int32_t loaded = 0;
  auto decode = [&](int32_t slot) {
    if (owner_.DecodeRecord(records, static_cast<size_t>(slot) * recordLength)) ++loaded;
  };
  int32_t expected = n;
  if (n == recordNumber) {
    // The whole ring, oldest first; the slot being written is skipped.
    for (int32_t slot = lastIndex + 2; slot <= recordNumber - 1; ++slot)
      decode(slot);
    for (int32_t slot = 0; slot <= lastIndex; ++slot)
      decode(slot);
    expected = n - 1;
  } else {
    for (int32_t slot = 0; slot < n; ++slot)
      decode(slot);
  }
  if (loaded < expected) {
    errMsg_ = std::to_string(loaded) + " from " + std::to_string(expected) + " records loaded.";
    errType_ = kErrRecords;
    return false;
  }
  return true;
}

void ReadingCycle::AnswerFromSimulation(int16_t count) {
  switch (buffer_.ReadState) {
    case kStateWaitStart:
      SetState(kStateHeader);
      break;
    case kStateHeader:
      if (!owner_.LoadDescription(errMsg_)) {
        StopOnFailure();
        return;
      }
      buffer_.HeaderLength = kSimulatedHeaderLength;
      buffer_.RecordReadOffset = kSimulatedHeaderLength;
      ResetWalk();
      walk_.FirstRead = true;
      SetState(kStateRunning);
      break;
    case kStateRunning:
      if (WalkCounterArea(simulation_.Header())) SetState(kStateLoading);
      break;
    case kStateLoading: {
      const std::vector<int32_t> block = simulation_.ReadRecords(
          int64_t{buffer_.RecordReadOffset} - kSimulatedHeaderLength, count);
      if (LoadRecords(block)) {
        SetState(kStateRunning);
      } else {
        StopOnFailure();
      }
      break;
    }
    default:
      break;
  }
}

}  // namespace vantrel
