#pragma once
// The reading cycle: what the control asks its host for in each reading state, how an answer
// (a DataBlock) moves the state on, and the walk over the controller's ring of records that
// finds the new ones. Simulated, the requests are answered from a ring in memory at once.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "acquisition/buffer_state.h"
#include "acquisition/simulated_controller.h"
#include "description/trace_description.h"

namespace vantrel {

// What the cycle hands on to the one who runs it: requests to the host, the steps done
// elsewhere (loading a description, decoding a record) and what it found.
class ReadingCycleOwner {
 public:
  virtual ~ReadingCycleOwner() = default;
  virtual void ReadRegisters(int16_t first, int16_t count) = 0;
  virtual void ReadDataBlock(int16_t block, int16_t offset, int16_t count) = 0;
  virtual void ReadStateChanged(int16_t state, std::string_view statusText) = 0;
  // A buffer header has come, before it is checked.
  virtual void HeaderArrived() = 0;
  // Loads the description the buffer key names; false with `errMsg` set when none loads.
  virtual bool LoadDescription(std::string& errMsg) = 0;
  // Decodes the record starting at `registers[first]` into a row; false when it failed.
  virtual bool DecodeRecord(std::span<const int32_t> registers, size_t first) = 0;
  virtual void RecordsMissed(int64_t count) = 0;
  virtual void CounterRestarted() = 0;
  // A "VTL2" buffer's command word changed.
  virtual void CommandChanged(int32_t command) = 0;
  virtual void RaiseError(int16_t errType, std::string_view message) = 0;
  // Fetched records could not all be decoded: the run stops, then the error is raised.
  virtual void StopOnFailure(int16_t errType, std::string_view message) = 0;
  // An answer brought the state back to running.
  virtual void ResumeRefresh() = 0;
};

// The control's settings the cycle reads; they belong to the control's properties.
struct ReadingSettings {
  const bool& simulation;
  const int16_t& startRegister;
};

class ReadingCycle {
 public:
  ReadingCycle(ReadingCycleOwner& owner, ReadingSettings settings, TraceDescription& description)
      : owner_(owner), settings_(settings), description_(description) {}

  int16_t State() const { return buffer_.ReadState; }
  // Changes the reading state and tells the owner, with the state's status text.
  void SetState(int16_t state);
  const BufferState& Buffer() const { return buffer_; }
  const WalkCounters& Walk() const { return walk_; }

  // Issues the read request of the current state for `count` words.
  void RequestRead(int16_t count);
  // The requests of the run modes: the header, the counter area (with `extra` words after
  // it), the records the last walk found.
  void RequestHeader() { RequestRead(buffer_.HeaderLength); }
  void RequestCounterArea(int16_t extra) {
    RequestRead(static_cast<int16_t>(description_.CounterIndex + extra));
  }
  void RequestRecords();
  // Consumes the host's answer according to the reading state.
  void TakeDataBlock(std::span<const int32_t> block);
  // The periodic read timer: asks for the counter area or the records, unless a request is
  // still unanswered (asked again after a few ticks).
  void OnReadTimer();

  // Walk counters, record number and records to read back to 0.
  void ResetWalk();
  // No buffer: no format, no key, every counter 0, the description's buffer layout cleared.
  void ResetBuffer();

  SimulatedController& Simulation() { return simulation_; }

 private:
  std::string StatusText(int16_t state) const;
  void Fail(int16_t errType, std::string message);
  void TakeStartRegister(std::span<const int32_t> block);
  void FailHeader();
  void TakeHeader(std::span<const int32_t> block);
  void TakeCounterArea(std::span<const int32_t> block);
  void TakeRecords(std::span<const int32_t> block);
  // Why a counter area read from the controller contradicts its buffer: a ring of no slots,
  // a write index outside the ring, or a ring larger than the buffer; empty when it does not.
  std::string CounterAreaProblem(std::span<const int32_t> block) const;
  bool WalkCounterArea(std::span<const int32_t> counterArea);
  void PlanNewRecords(int64_t fresh);
  bool LoadRecords(std::span<const int32_t> records);
  void AnswerFromSimulation(int16_t count);
  void StopOnFailure() { owner_.StopOnFailure(errType_, errMsg_); }

  ReadingCycleOwner& owner_;
  ReadingSettings settings_;
  TraceDescription& description_;
  BufferState buffer_;
  WalkCounters walk_;
  SimulatedController simulation_;
  // The last error: a failed simulated read reports it again.
  int16_t errType_ = 0;
  std::string errMsg_;
};

}  // namespace vantrel
