#include "vantrel/hosts/register_space.h"

#include <algorithm>
#include <cstddef>

namespace vantrel::hosts {
namespace {

int64_t BlockKey(int32_t block, int32_t offset) {
  return (int64_t{block} << 32) | static_cast<uint32_t>(offset);
}

}  // namespace

int32_t RegisterSpace::Register(int32_t number) const {
  auto it = registers_.find(number);
  return it == registers_.end() ? 0 : it->second;
}

void RegisterSpace::SetRegister(int32_t number, int32_t value) {
  registers_[number] = value;
}

std::vector<int32_t> RegisterSpace::ReadRegisters(int32_t first, int32_t count) const {
  std::vector<int32_t> out;
  out.reserve(static_cast<size_t>(std::max(count, 0)));
  for (int32_t i = 0; i < count; ++i)
    out.push_back(Register(first + i));
  return out;
}

int32_t RegisterSpace::DataBlockWord(int32_t block, int32_t offset) const {
  auto it = dataBlocks_.find(BlockKey(block, offset));
  return it == dataBlocks_.end() ? 0 : it->second;
}

void RegisterSpace::SetDataBlockWord(int32_t block, int32_t offset, int32_t value) {
  dataBlocks_[BlockKey(block, offset)] = value;
}

std::vector<int32_t> RegisterSpace::ReadDataBlock(int32_t block, int32_t offset,
                                                  int32_t count) const {
  std::vector<int32_t> out;
  out.reserve(static_cast<size_t>(std::max(count, 0)));
  for (int32_t i = 0; i < count; ++i)
    out.push_back(DataBlockWord(block, offset + i));
  return out;
}

}  // namespace vantrel::hosts
