// The walk over the controller's ring of records: from the counter area, which records are
// new since the last poll and where they lie; then decoding them, oldest first.

#include <optional>

#include "acquisition/controller_status.h"
#include "acquisition/trace_steps.h"
#include "decoding/record_decoder.h"
#include "decoding/row_bookkeeping.h"

namespace vantrel {
namespace {

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

void PlanNewRecords(Module& m, int64_t fresh) {
  WalkCounters& w = m.walk;
  BufferState& b = m.buffer;
  const int64_t headerLength = b.HeaderLength;
  const int64_t recordLength = m.description.RecordLength;
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
    AddMissRow(m, fresh - w.RecordNumber + 1);
    Store16(b.RecordsToRead, w.RecordNumber);
    b.RecordReadOffset = b.HeaderLength;
  }
}

}  // namespace

bool WalkBufferCounters(Module& m, std::span<const int32_t> counterArea) {
  WalkCounters& w = m.walk;
  BufferState& b = m.buffer;
  if (auto counter = Element(counterArea, 0)) {
    // A negative counter has 2^31 added: the controller counts in 31 bits.
    w.BufferCounter =
        *counter < 0 ? static_cast<int32_t>(int64_t{*counter} + 2147483648LL) : *counter;
  }
  if (w.LastBufferCounter > w.BufferCounter) {
    AddRestartRow(m);
    w.BufferCounter = 0;
    w.LastBufferCounter = 0;
    w.WriteIndex = 0;
    w.LastIndex = 0;
    w.RecordNumber = 0;
    b.RecordsToRead = 0;
    return false;
  }
  if (auto index = Element(counterArea, 1)) w.WriteIndex = *index;
  if (auto capacity = Element(counterArea, 3)) w.RecordNumber = *capacity;
  if (b.FormatKey == "VTL2") {
    if (auto command = Element(counterArea, 4)) b.CommandWord = *command;
    if (auto exportIndex = Element(counterArea, 6)) b.ExportIndex = *exportIndex;
    CheckCommand(m);
  }
  Store16(w.LastIndex, w.WriteIndex == 0 ? int64_t{w.RecordNumber} - 1 : int64_t{w.WriteIndex} - 1);

  if (w.BufferCounter == w.LastBufferCounter) {
    b.RecordsToRead = 0;
  } else if (w.LastBufferCounter == 0 && w.FirstRead) {
    // The first poll loads the history: the slots written so far, or the whole ring.
    w.FirstRead = false;
    Store16(b.RecordsToRead, w.BufferCounter <= w.WriteIndex ? w.BufferCounter : w.RecordNumber);
  } else {
    PlanNewRecords(m, int64_t{w.BufferCounter} - w.LastBufferCounter);
  }
  w.LastBufferCounter = w.BufferCounter;
  return b.RecordsToRead > 0;
}

bool LoadRecords(Module& m, std::span<const int32_t> records) {
  const int32_t n = m.buffer.RecordsToRead;
  const int32_t recordNumber = m.walk.RecordNumber;
  const int32_t lastIndex = m.walk.LastIndex;
  const size_t recordLength = static_cast<size_t>(std::max<int16_t>(m.description.RecordLength, 0));
  int32_t loaded = 0;
  auto decode = [&](int32_t slot) {
    if (DecodeRecord(m, records, static_cast<size_t>(slot) * recordLength)) ++loaded;
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
    m.ErrMsg = std::to_string(loaded) + " from " + std::to_string(expected) + " records loaded.";
    m.ErrType = kErrRecords;
    return false;
  }
  return true;
}

}  // namespace vantrel
