#include "acquisition/simulated_controller.h"

#include <algorithm>
#include <cmath>

#include "platform/numbers.h"

namespace vantrel {
namespace {

// Used as it stands for pi, so that the simulated values are the ones documented.
constexpr double kPi = 3.1415;

}  // namespace

void SimulatedController::SizeRing(int16_t recordLength, int32_t recordCount) {
  recordCount_ = std::max(recordCount, 0);
  const int64_t size = int64_t{std::max<int16_t>(recordLength, 0)} * recordCount_;
  records_.assign(static_cast<size_t>(size) + 1, 0);
}

void SimulatedController::WriteNextRecord(int16_t recordLength) {
  angle1_ = angle1_ < 350 ? angle1_ + 10 : 0;
  angle2_ = static_cast<int16_t>(angle2_ < 340 ? angle2_ + 20 : 0);
  header_[0] += 1;
  header_[1] = header_[1] >= recordCount_ ? 1 : header_[1] + 1;
  header_[3] = recordCount_;
  const int64_t length = recordLength;
  const int64_t base = (int64_t{header_[1]} - 1) * length;
  if (length <= 0 || base < 0 || base + length > static_cast<int64_t>(records_.size())) {
    return;  // no ring to write into
  }
  for (int64_t i = 0; i < length; ++i) {
    int32_t value = 0;
    if (i == 0) {
      value = RoundToInt32((std::sin(angle1_ * kPi / 180) + 1) * 100);
    } else if (i == 1) {
      value = RoundToInt32((std::sin(angle2_ * kPi / 180) + 1) * 50);
    } else {
      value = static_cast<int32_t>(static_cast<uint32_t>(int64_t{header_[0]} * i * 11));
    }
    records_[static_cast<size_t>(base + i)] = value;
  }
}

std::vector<int32_t> SimulatedController::ReadRecords(int64_t first, int16_t count) const {
  std::vector<int32_t> block(static_cast<size_t>(std::max<int16_t>(count, 0)) + 1, 0);
  for (size_t i = 0; i + 1 < block.size(); ++i) {
    const int64_t index = first + static_cast<int64_t>(i);
    if (index >= 0 && index < static_cast<int64_t>(records_.size())) {
      block[i] = records_[static_cast<size_t>(index)];
    }
  }
  return block;
}

}  // namespace vantrel
