#pragma once
// A controller's memory as the trace buffer uses it: numbered registers and numbered data
// blocks of signed 32-bit words. Unwritten words read 0.

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace vantrel::hosts {

class RegisterSpace {
 public:
  int32_t Register(int32_t number) const;
  void SetRegister(int32_t number, int32_t value);
  std::vector<int32_t> ReadRegisters(int32_t first, int32_t count) const;

  int32_t DataBlockWord(int32_t block, int32_t offset) const;
  void SetDataBlockWord(int32_t block, int32_t offset, int32_t value);
  std::vector<int32_t> ReadDataBlock(int32_t block, int32_t offset, int32_t count) const;

 private:
  std::unordered_map<int32_t, int32_t> registers_;
  std::unordered_map<int64_t, int32_t> dataBlocks_;
};

}  // namespace vantrel::hosts
