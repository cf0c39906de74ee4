#include "acquisition/reading_cycle.h"

#include <string>

#include "acquisition/buffer_checks.h"
#include "acquisition/string_columns.h"
#include "acquisition/trace_steps.h"
#include "control/run_control.h"

namespace vantrel {
namespace {

constexpr int16_t kTicksBeforeAskingAgain = 5;

int16_t Offset16(int32_t start, int32_t offset) {
  // Register numbers are 16-bit on the event interface; they wrap as the protocol does.
  return static_cast<int16_t>(static_cast<uint16_t>(start + offset));
}

std::string StatusText(const Module& m, int16_t state) {
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
      const int32_t toRead = m.buffer.RecordsToRead;
      const int32_t shown = toRead != m.walk.RecordNumber ? toRead : toRead - 1;
      return "Loading " + std::to_string(shown) + " records";
    }
    default:
      return {};
  }
}

void TakeStartRegister(Module& m, std::span<const int32_t> block) {
  if (block.empty()) {
    m.ErrMsg = ShortBlockMessage("start register", 0, 1);
  } else if (CheckStartRegister(block[0], m.buffer, m.ErrMsg)) {
    m.buffer.HeaderLength = 16;
    m.description.CounterIndex = 4;
    SetReadState(m, kStateHeader);
    return;
  }
  m.ErrType = kErrStartOrDescription;
  m.RaiseError(kErrStartOrDescription, m.ErrMsg);
}

void FailHeader(Module& m) {
  m.ErrType = kErrHeader;
  m.RaiseError(kErrHeader, m.ErrMsg);
  ResetWalkCounters(m);
  SetReadState(m, kStateHeader);
}

void TakeHeader(Module& m, std::span<const int32_t> block) {
  const auto needed = static_cast<size_t>(m.buffer.HeaderLength);
  if (block.size() < needed || needed < 4) {
    m.ErrMsg = ShortBlockMessage("buffer header", block.size(), needed);
    FailHeader(m);
    return;
  }
  m.buffer.LastWord = block[needed - 1];
  m.surface.infoButton.enabled = false;
  m.SurfaceChanged();
  if (!CheckHeader(block, m.buffer, m.ErrMsg)) {
    FailHeader(m);
    return;
  }
  if (!LoadTraceDescription(m)) {
    m.ErrType = kErrStartOrDescription;
    m.RaiseError(kErrStartOrDescription, m.ErrMsg);
    return;
  }
  ResolveStringColumns(m.description, block);
  SetReadState(m, kStateRunning);
  ResumeRefresh(m);
}

void TakeCounterArea(Module& m, std::span<const int32_t> block) {
  const int32_t counterIndex = m.description.CounterIndex;
  if (counterIndex < 1 || block.size() < static_cast<size_t>(counterIndex)) {
    m.ErrType = kErrRecords;
    m.ErrMsg = ShortBlockMessage("counter area", block.size(),
                                 static_cast<size_t>(std::max<int32_t>(counterIndex, 1)));
    m.RaiseError(kErrRecords, m.ErrMsg);
    return;
  }
  m.buffer.LastWord = block[static_cast<size_t>(counterIndex - 1)];
  if (WalkBufferCounters(m, block)) SetReadState(m, kStateLoading);
}

void TakeRecords(Module& m, std::span<const int32_t> block) {
  if (LoadRecords(m, block)) {
    SetReadState(m, kStateRunning);
    ResumeRefresh(m);
    return;
  }
  m.props.RunMode = kRunStop;
  ApplyRunMode(m);
  m.RaiseError(m.ErrType, m.ErrMsg);
}

}  // namespace

void ResetWalkCounters(Module& m) {
  m.walk.BufferCounter = 0;
  m.walk.LastBufferCounter = 0;
  m.walk.WriteIndex = 0;
  m.walk.LastIndex = 0;
  m.walk.RecordNumber = 0;
  m.buffer.RecordsToRead = 0;
}

void SetReadState(Module& m, int16_t state) {
  if (state == m.buffer.ReadState) return;
  m.buffer.ReadState = state;
  ShowStatus(m, StatusText(m, state));
  m.events.Status(state);
}

void RequestRead(Module& m, int16_t count) {
  if (m.props.Simulation) {
    AnswerFromSimulation(m, count);
    return;
  }
  BufferState& b = m.buffer;
  if (b.ReadState >= kStateWaitStart && b.ReadState <= kStateLoading) {
    // Set before the event: a host answering inside it clears the flag again.
    b.AnswerPending = true;
    b.TicksWaiting = 0;
  }
  switch (b.ReadState) {
    case kStateWaitStart:
      b.RequestOffset = 0;
      b.RequestLength = 1;
      m.events.ReadPCDReg(m.props.StartRegister, 1);
      break;
    case kStateHeader:
    case kStateRunning:
    case kStateLoading: {
      const int32_t offset = b.ReadState == kStateHeader    ? 0
                             : b.ReadState == kStateRunning ? m.description.CounterIndex
                                                            : b.RecordReadOffset;
      b.RequestOffset = offset;
      b.RequestLength = count;
      if (b.DBMode) {
        m.events.ReadPCDDB(b.BufferStart, static_cast<int16_t>(offset), count);
      } else {
        m.events.ReadPCDReg(Offset16(b.BufferStart, offset), count);
      }
      break;
    }
    default:
      break;
  }
}

void TakeDataBlock(Module& m, std::span<const int32_t> block) {
  if (!m.props.Enabled || m.buffer.ReadState <= kStateDisabled) return;
  m.MarkChanged("DataBlock");
  m.buffer.AnswerPending = false;
  switch (m.buffer.ReadState) {
    case kStateWaitStart:
      TakeStartRegister(m, block);
      break;
    case kStateHeader:
      TakeHeader(m, block);
      break;
    case kStateRunning:
      TakeCounterArea(m, block);
      break;
    case kStateLoading:
      TakeRecords(m, block);
      break;
    default:
      break;
  }
}

void OnReadTimer(Module& m) {
  if (m.gridRedrawPending) {
    m.gridRedrawPending = false;
    m.grid.SetRedraw(true);
  }
  BufferState& b = m.buffer;
  // A request still unanswered after a few ticks is taken as lost and asked again.
  const bool waiting = b.AnswerPending && ++b.TicksWaiting < kTicksBeforeAskingAgain;
  if (!waiting && b.ReadState == kStateRunning) {
    const auto counterRead = static_cast<int16_t>(m.description.CounterIndex + 8);
    b.ReadCount = counterRead;
    RequestRead(m, counterRead);
  }
  // In state 4 either a synchronous host has just answered the counter read, or a later
  // answer left the records to be fetched on this tick.
  if (!waiting && b.ReadState == kStateLoading) {
    const int32_t count = int32_t{m.description.RecordLength} * b.RecordsToRead;
    b.ReadCount = static_cast<int16_t>(count);
    RequestRead(m, static_cast<int16_t>(count));
  }
  m.surface.activityVisible = !m.surface.activityVisible;
  m.SurfaceChanged();
}

}  // namespace vantrel
