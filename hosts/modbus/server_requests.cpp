#include "server_requests.h"

namespace vantrel::hosts::modbus {
namespace {

constexpr uint8_t kReadHoldingRegisters = 3;
constexpr int32_t kMaxRegistersPerRead = 125;

uint16_t Word(std::span<const uint8_t> bytes, size_t at) {
  return static_cast<uint16_t>((bytes[at] << 8) | bytes[at + 1]);
}

void PutWord(std::vector<uint8_t>& out, uint32_t value) {
  out.push_back(static_cast<uint8_t>((value >> 8) & 0xFF));
  out.push_back(static_cast<uint8_t>(value & 0xFF));
}

// The reply's header: the request's transaction and unit, `pduBytes` to follow.
void PutHeader(std::span<const uint8_t> request, size_t pduBytes, std::vector<uint8_t>& out) {
  out.insert(out.end(), request.begin(), request.begin() + 4);
  PutWord(out, static_cast<uint32_t>(pduBytes + 1));
  out.push_back(request[6]);
}

void PutException(std::span<const uint8_t> request, uint8_t code, std::vector<uint8_t>& out) {
  PutHeader(request, 2, out);
  out.push_back(static_cast<uint8_t>(request[kRequestHeaderBytes] | 0x80));
  out.push_back(code);
}

// The holding registers from `address` as the register space holds them now; false when one
// of them maps to nothing.
bool ReadWords(const RegisterSpace& space, const ModbusMapping& mapping, int32_t address,
               int32_t count, std::vector<uint8_t>& out) {
  // The two halves of a register are usually asked for together: it is looked up once.
  std::optional<ModbusMapping::Place> last;
  int32_t value = 0;
  for (int32_t i = 0; i < count; ++i) {
    const auto place = mapping.Locate(address + i);
    if (!place) return false;
    if (!last || last->dataBlock != place->dataBlock || last->block != place->block ||
        last->index != place->index) {
      value = place->dataBlock ? space.DataBlockWord(place->block, place->index)
                               : space.Register(place->index);
      last = place;
    }
    uint16_t first = 0;
    uint16_t second = 0;
    mapping.Split(value, first, second);
    PutWord(out, place->firstHalf ? first : second);
  }
  return true;
}

}  // namespace

std::optional<size_t> FirstRequestSize(std::span<const uint8_t> received) {
  if (received.size() < kRequestHeaderBytes) return 0;
  const uint16_t protocol = Word(received, 2);
  const uint16_t following = Word(received, 4);
  // The unit id and at least a function code follow; nothing is longer than the protocol's
  // largest frame.
  if (protocol != 0 || following < 2 || following + 6u > kMaxRequestBytes) return std::nullopt;
  const size_t size = 6u + following;
  return received.size() < size ? 0 : size;
}

void AppendReply(std::span<const uint8_t> request, const RegisterSpace& space,
                 const ModbusMapping& mapping, std::vector<uint8_t>& out) {
  const std::span<const uint8_t> pdu = request.subspan(kRequestHeaderBytes);
  if (pdu[0] != kReadHoldingRegisters) {
    // Only reads are served: the controller's memory is the program's to write.
    PutException(request, kIllegalFunction, out);
    return;
  }
  if (pdu.size() != 5) {
    PutException(request, kIllegalDataValue, out);
    return;
  }
  const int32_t address = Word(pdu, 1);
  const int32_t count = Word(pdu, 3);
  if (count < 1 || count > kMaxRegistersPerRead) {
    PutException(request, kIllegalDataValue, out);
    return;
  }
  if (address + count > kAddressSpace) {
    PutException(request, kIllegalDataAddress, out);
    return;
  }
  const size_t start = out.size();
  PutHeader(request, 2u + 2u * static_cast<size_t>(count), out);
  out.push_back(kReadHoldingRegisters);
  out.push_back(static_cast<uint8_t>(2 * count));
  if (!ReadWords(space, mapping, address, count, out)) {
    out.resize(start);
    PutException(request, kIllegalDataAddress, out);
  }
}

}  // namespace vantrel::hosts::modbus
