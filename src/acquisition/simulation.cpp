#include "acquisition/simulation.h"

#include <cmath>
#include <vector>

#include "acquisition/reading_cycle.h"
#include "acquisition/trace_steps.h"
#include "control/run_control.h"
#include "platform/numbers.h"

namespace vantrel {
namespace {

// The simulated buffer has an 8-word header in front of its ring.
constexpr int16_t kSimulatedHeaderLength = 8;
// Used as it stands for pi, so that the simulated values are the ones documented.
constexpr double kPi = 3.1415;

void StopOnFailure(Module& m) {
  m.props.RunMode = kRunStop;
  ApplyRunMode(m);
  m.RaiseError(m.ErrType, m.ErrMsg);
}

void AnswerHeader(Module& m) {
  if (!LoadTraceDescription(m)) {
    StopOnFailure(m);
    return;
  }
  m.buffer.HeaderLength = kSimulatedHeaderLength;
  m.buffer.RecordReadOffset = kSimulatedHeaderLength;
  ResetWalkCounters(m);
  m.walk.FirstRead = true;
  SetReadState(m, kStateRunning);
}

void AnswerRecords(Module& m, int16_t count) {
  // `count` values from the ring, plus one extra 0 at the end.
  std::vector<int32_t> block(static_cast<size_t>(std::max<int16_t>(count, 0)) + 1, 0);
  const int64_t start = int64_t{m.buffer.RecordReadOffset} - kSimulatedHeaderLength;
  for (size_t i = 0; i + 1 < block.size(); ++i) {
    const int64_t index = start + static_cast<int64_t>(i);
    if (index >= 0 && index < static_cast<int64_t>(m.SimRecords.size())) {
      block[i] = m.SimRecords[static_cast<size_t>(index)];
    }
  }
  if (LoadRecords(m, block)) {
    SetReadState(m, kStateRunning);
  } else {
    StopOnFailure(m);
  }
}

}  // namespace

void StartSimulation(Module& m) {
  m.SimHeader = {};
  m.simulTimer->SetEnabled(true);
}

void PrepareSimulation(Module& m, int32_t intervalMs, int32_t recordCount) {
  m.simulTimer->SetInterval(intervalMs);
  m.SimRecordCount = std::max(recordCount, 0);
  const int64_t size = int64_t{std::max<int16_t>(m.description.RecordLength, 0)} * m.SimRecordCount;
  m.SimRecords.assign(static_cast<size_t>(size) + 1, 0);
}

void OnSimulationTimer(Module& m) {
  m.SimAngle1 = m.SimAngle1 < 350 ? m.SimAngle1 + 10 : 0;
  m.SimAngle2 = static_cast<int16_t>(m.SimAngle2 < 340 ? m.SimAngle2 + 20 : 0);
  m.SimHeader[0] += 1;
  m.SimHeader[1] = m.SimHeader[1] >= m.SimRecordCount ? 1 : m.SimHeader[1] + 1;
  m.SimHeader[3] = m.SimRecordCount;
  const int64_t length = m.description.RecordLength;
  const int64_t base = (int64_t{m.SimHeader[1]} - 1) * length;
  if (length <= 0 || base < 0 || base + length > static_cast<int64_t>(m.SimRecords.size())) {
    return;  // no ring to write into
  }
  for (int64_t i = 0; i < length; ++i) {
    int32_t value = 0;
    if (i == 0) {
      value = RoundToInt32((std::sin(m.SimAngle1 * kPi / 180) + 1) * 100);
    } else if (i == 1) {
      value = RoundToInt32((std::sin(m.SimAngle2 * kPi / 180) + 1) * 50);
    } else {
      value = static_cast<int32_t>(static_cast<uint32_t>(int64_t{m.SimHeader[0]} * i * 11));
    }
    m.SimRecords[static_cast<size_t>(base + i)] = value;
  }
}

void AnswerFromSimulation(Module& m, int16_t count) {
  switch (m.buffer.ReadState) {
    case kStateWaitStart:
      SetReadState(m, kStateHeader);
      break;
    case kStateHeader:
      AnswerHeader(m);
      break;
    case kStateRunning:
      if (WalkBufferCounters(m, m.SimHeader)) SetReadState(m, kStateLoading);
      break;
    case kStateLoading:
      AnswerRecords(m, count);
      break;
    default:
      break;
  }
}

}  // namespace vantrel
