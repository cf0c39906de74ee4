#pragma once
// The simulated controller: without a controller, a timer writes records into a ring in
// memory, behind a header of write counter, last slot written (1-based) and ring size.

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace vantrel {

class SimulatedController {
 public:
  // A fresh header: nothing written yet.
  void Restart() { header_ = {}; }
  // Sizes the ring: `recordCount` records of `recordLength` registers.
  void SizeRing(int16_t recordLength, int32_t recordCount);
  // One tick of the simulated program: the next record written into the ring.
  void WriteNextRecord(int16_t recordLength);

  std::span<const int32_t> Header() const { return header_; }
  // `count` registers of the ring from `first`, plus one extra 0 at the end; registers
  // outside the ring read 0.
  std::vector<int32_t> ReadRecords(int64_t first, int16_t count) const;

 private:
  std::array<int32_t, 5> header_{};
  std::vector<int32_t> records_;
  int32_t recordCount_ = 0;
  double angle1_ = 0;
  int16_t angle2_ = 0;
};

}  // namespace vantrel
