#pragma once
// A controller program that keeps a trace buffer, as a real one does: the start register
// pointing at the buffer, a "VTL1" or "VTL2" header, the counter area (running counter,
// write index, ring size) and records written into the ring. What each register of a record
// holds comes from a generator. Faults can be forced: an overrun, a counter reset, a pause.

#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "vantrel/clock.h"
#include "vantrel/hosts/register_space.h"

namespace vantrel::hosts {

enum class GeneratorKind {
  Counter,     // the record's running number
  Sawtooth,    // 0 .. amplitude - 1, one step per record
  Sine,        // offset + amplitude * sin(2 pi n / period)
  RandomBits,  // `amplitude` random low bits
  TimeStamp,   // MMDDhhmmss from the clock
  Text,        // four characters, first in the most significant byte
  Constant,
  Fields,  // several generators, each masked to its width and shifted into place
};

struct RegisterGenerator;

// One field of a register made of several: `width` bits at bit `shift`.
struct GeneratedField {
  int shift = 0;
  int width = 32;
  std::vector<RegisterGenerator> generator;  // exactly one
};

struct RegisterGenerator {
  GeneratorKind kind = GeneratorKind::Constant;
  int64_t amplitude = 0;
  int64_t offset = 0;
  int32_t period = 1;
  std::string text;
  std::vector<GeneratedField> fields;
  // The value for the record numbered `n` (1 for the first record ever written).
  int32_t Value(int64_t n, const DateTime& now, std::mt19937& random) const;

  static RegisterGenerator Counter() { return Make(GeneratorKind::Counter); }
  static RegisterGenerator Sawtooth(int64_t steps, int64_t from = 0) {
    return Make(GeneratorKind::Sawtooth, steps, from);
  }
  static RegisterGenerator Sine(int64_t amplitude, int64_t offset, int32_t period) {
    return Make(GeneratorKind::Sine, amplitude, offset, period);
  }
  static RegisterGenerator RandomBits(int64_t bits) {
    return Make(GeneratorKind::RandomBits, bits);
  }
  static RegisterGenerator TimeStamp() { return Make(GeneratorKind::TimeStamp); }
  static RegisterGenerator Text(std::string text) {
    RegisterGenerator g = Make(GeneratorKind::Text);
    g.text = std::move(text);
    return g;
  }
  static RegisterGenerator Constant(int64_t value) {
    return Make(GeneratorKind::Constant, 0, value);
  }
  // `parts` as (bit position, width, generator).
  static RegisterGenerator Fields(std::vector<GeneratedField> parts) {
    RegisterGenerator g = Make(GeneratorKind::Fields);
    g.fields = std::move(parts);
    return g;
  }

 private:
  static RegisterGenerator Make(GeneratorKind kind, int64_t amplitude = 0, int64_t offset = 0,
                                int32_t period = 1) {
    RegisterGenerator g;
    g.kind = kind;
    g.amplitude = amplitude;
    g.offset = offset;
    g.period = period;
    return g;
  }
};

struct TraceProgramConfig {
  int16_t startRegister = 100;
  bool dataBlock = false;
  int32_t bufferStart = 1000;  // first register, or the data block number
  std::string format = "VTL2";
  std::string key = "PMP1";
  int32_t version = 1;
  int32_t ringRecords = 50;
  int32_t counterIndex = 4;
  // The running counter before the first record; a program that has run for long counts
  // through negative values.
  int32_t counterStart = 0;
  int32_t exportIndex = 0;
  int32_t stringLengths = 0;                 // word 12: the string length table
  std::vector<RegisterGenerator> registers;  // one per register of a record
};

class TraceProgram {
 public:
  TraceProgram(RegisterSpace& space, TraceProgramConfig config, const Clock& clock,
               uint32_t seed = 1);

  // Writes the start register and the header; the ring starts empty.
  void Install();
  // Writes the next `count` records (nothing while paused).
  void WriteRecords(int64_t count = 1);
  // Sets the command word (header word 8 of a "VTL2" buffer).
  void SetCommand(int32_t command);
  // The controller restarts: the counter and the write index go back to 0.
  void RestartCounter();
  void SetPaused(bool paused) { paused_ = paused; }

  const TraceProgramConfig& Config() const { return config_; }
  int32_t HeaderLength() const { return config_.format == "VTL1" ? 8 : 16; }
  int32_t RecordLength() const { return static_cast<int32_t>(config_.registers.size()); }
  int64_t RecordsWritten() const { return written_; }
  int32_t Counter() const { return counter_; }
  int32_t WriteIndex() const { return writeIndex_; }
  // The register values of the record numbered `n` as it was written, while the ring still
  // holds it (one of the last `ringRecords` written); empty for an older record.
  std::vector<int32_t> RecordValues(int64_t n) const;

 private:
  void SetWord(int32_t offset, int32_t value);
  void WriteCounters();

  RegisterSpace& space_;
  TraceProgramConfig config_;
  const Clock& clock_;
  std::mt19937 random_;
  bool paused_ = false;
  int64_t written_ = 0;
  int32_t counter_ = 0;
  int32_t writeIndex_ = 0;
  // The records the ring holds, oldest first: a program runs for days, so no more are kept.
  std::deque<std::vector<int32_t>> inRing_;
};

}  // namespace vantrel::hosts
