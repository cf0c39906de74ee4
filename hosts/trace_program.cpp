#include "vantrel/hosts/trace_program.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vantrel::hosts {
namespace {

int32_t PackedText(std::string_view text) {
  uint32_t word = 0;
  for (size_t i = 0; i < 4; ++i) {
    const uint32_t c = i < text.size() ? static_cast<unsigned char>(text[i]) : uint32_t{' '};
    word = (word << 8) | c;
  }
  return static_cast<int32_t>(word);
}

int32_t Wrap(int64_t value) {
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

}  // namespace

int32_t RegisterGenerator::Value(int64_t n, const DateTime& now, std::mt19937& random) const {
  switch (kind) {
    case GeneratorKind::Counter:
      return Wrap(n);
    case GeneratorKind::Sawtooth:
      return Wrap(offset + (amplitude > 0 ? (n - 1) % amplitude : 0));
    case GeneratorKind::Sine: {
      const double phase = 2 * std::numbers::pi * static_cast<double>(n) / std::max(period, 1);
      return Wrap(offset + std::llround(static_cast<double>(amplitude) * std::sin(phase)));
    }
    case GeneratorKind::RandomBits: {
      const int bits = static_cast<int>(std::clamp<int64_t>(amplitude, 0, 32));
      const uint32_t mask = bits == 32 ? 0xFFFFFFFFu : ((1u << bits) - 1u);
      return static_cast<int32_t>(random() & mask);
    }
    case GeneratorKind::TimeStamp:
      return static_cast<int32_t>(now.month * 100000000LL + now.day * 1000000LL +
                                  now.hour * 10000LL + now.minute * 100LL + now.second);
    case GeneratorKind::Text:
      return PackedText(text);
    case GeneratorKind::Constant:
      return Wrap(offset);
    case GeneratorKind::Fields: {
      uint32_t word = 0;
      for (const GeneratedField& f : fields) {
        if (f.generator.empty() || f.width <= 0 || f.shift < 0 || f.shift > 31) continue;
        const uint32_t mask = f.width >= 32 ? 0xFFFFFFFFu : ((1u << f.width) - 1u);
        const auto part = static_cast<uint32_t>(f.generator.front().Value(n, now, random));
        word |= (part & mask) << f.shift;
      }
      return static_cast<int32_t>(word);
    }
  }
  return 0;
}

TraceProgram::TraceProgram(RegisterSpace& space, TraceProgramConfig config, const Clock& clock,
                           uint32_t seed)
    : space_(space),
      config_(std::move(config)),
      clock_(clock),
      random_(seed),
      counter_(config_.counterStart) {}

void TraceProgram::SetWord(int32_t offset, int32_t value) {
  if (config_.dataBlock) {
    space_.SetDataBlockWord(config_.bufferStart, offset, value);
  } else {
    space_.SetRegister(config_.bufferStart + offset, value);
  }
}

void TraceProgram::Install() {
  const int32_t pointer = (config_.dataBlock ? ('D' << 16) : 0) | (config_.bufferStart & 0xFFFF);
  space_.SetRegister(config_.startRegister, pointer);
  SetWord(0, PackedText(config_.format));
  SetWord(1, PackedText(config_.key));
  SetWord(2, config_.version);
  SetWord(3, HeaderLength() + RecordLength() * config_.ringRecords);
  if (HeaderLength() == 16) {
    SetWord(10, config_.exportIndex);
    SetWord(12, config_.stringLengths);
  }
  WriteCounters();
}

void TraceProgram::WriteCounters() {
  SetWord(config_.counterIndex, counter_);
  SetWord(config_.counterIndex + 1, writeIndex_);
  SetWord(config_.counterIndex + 3, config_.ringRecords);
}

void TraceProgram::WriteRecords(int64_t count) {
  if (paused_) return;
  const DateTime now = clock_.Now();
  const int32_t ring = std::max(config_.ringRecords, 1);
  for (int64_t k = 0; k < count; ++k) {
    ++written_;
    std::vector<int32_t> values;
    values.reserve(config_.registers.size());
    for (const RegisterGenerator& g : config_.registers) {
      values.push_back(g.Value(written_, now, random_));
    }
    const int32_t slotStart = HeaderLength() + RecordLength() * writeIndex_;
    for (size_t i = 0; i < values.size(); ++i) {
      SetWord(slotStart + static_cast<int32_t>(i), values[i]);
    }
    inRing_.push_back(std::move(values));
    if (inRing_.size() > static_cast<size_t>(ring)) inRing_.pop_front();
    writeIndex_ = (writeIndex_ + 1) % ring;
    counter_ = counter_ == INT32_MAX ? 0 : counter_ + 1;
  }
  WriteCounters();
}

void TraceProgram::SetCommand(int32_t command) {
  if (HeaderLength() == 16) SetWord(8, command);
}

void TraceProgram::RestartCounter() {
  counter_ = 0;
  writeIndex_ = 0;
  WriteCounters();
}

std::vector<int32_t> TraceProgram::RecordValues(int64_t n) const {
  const int64_t oldest = written_ - static_cast<int64_t>(inRing_.size()) + 1;
  if (n < oldest || n > written_) return {};
  return inRing_[static_cast<size_t>(n - oldest)];
}

}  // namespace vantrel::hosts
