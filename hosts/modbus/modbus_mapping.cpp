#include "vantrel/hosts/modbus/modbus_mapping.h"

#include <charconv>

namespace vantrel::hosts::modbus {
namespace {

constexpr int64_t kAddressSpace = 65536;

bool Number(std::string_view text, int64_t& value) {
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && ec == std::errc() && end == text.data() + text.size();
}

std::vector<HoldingRead> Reads(int64_t address, int64_t registers, std::string& error) {
  if (registers <= 0) return {};
  const int64_t words = 2 * registers;
  if (address < 0 || address + words > kAddressSpace) {
    error = "holding registers " + std::to_string(address) + " to " +
            std::to_string(address + words - 1) + " lie outside the Modbus address space";
    return {};
  }
  std::vector<HoldingRead> reads;
  for (int64_t done = 0; done < words; done += kMaxReadWords) {
    const int64_t part = std::min<int64_t>(kMaxReadWords, words - done);
    reads.push_back({static_cast<int32_t>(address + done), static_cast<int32_t>(part)});
  }
  return reads;
}

}  // namespace

std::optional<Endpoint> ParseEndpoint(std::string_view text, std::string& error) {
  constexpr std::string_view kScheme = "modbus://";
  if (text.substr(0, kScheme.size()) != kScheme) {
    error = "a Modbus controller is written modbus://HOST:PORT, not '" + std::string(text) + "'";
    return std::nullopt;
  }
  std::string_view rest = text.substr(kScheme.size());
  if (!rest.empty() && rest.back() == '/') rest.remove_suffix(1);
  Endpoint endpoint;
  const size_t colon = rest.rfind(':');
  endpoint.host = std::string(rest.substr(0, colon));
  if (colon != std::string_view::npos) {
    int64_t port = 0;
    if (!Number(rest.substr(colon + 1), port) || port < 1 || port > 65535) {
      error = "the port of '" + std::string(text) + "' must be a number from 1 to 65535";
      return std::nullopt;
    }
    endpoint.port = static_cast<int>(port);
  }
  if (endpoint.host.empty()) {
    error = "'" + std::string(text) + "' names no host";
    return std::nullopt;
  }
  return endpoint;
}

bool ModbusMapping::SetWordOrder(std::string_view text, std::string& error) {
  if (text == "hi-lo") {
    wordOrder = WordOrder::HighLow;
  } else if (text == "lo-hi") {
    wordOrder = WordOrder::LowHigh;
  } else {
    error = "the word order is hi-lo or lo-hi, not '" + std::string(text) + "'";
    return false;
  }
  return true;
}

bool ModbusMapping::AddDataBlock(std::string_view text, std::string& error) {
  const size_t equals = text.find('=');
  int64_t block = 0;
  int64_t address = 0;
  if (equals == std::string_view::npos || !Number(text.substr(0, equals), block) ||
      !Number(text.substr(equals + 1), address) || block < 0 || block > 32767 || address < 0 ||
      address >= kAddressSpace) {
    error =
        "a data block is mapped as BLOCK=ADDRESS (block 0 to 32767, address 0 to 65535), "
        "not '" +
        std::string(text) + "'";
    return false;
  }
  dataBlocks[static_cast<int32_t>(block)] = static_cast<int32_t>(address);
  return true;
}

std::vector<HoldingRead> ModbusMapping::RegisterReads(int32_t first, int32_t count,
                                                      std::string& error) const {
  return Reads(int64_t{registerOffset} + 2 * int64_t{first}, count, error);
}

std::vector<HoldingRead> ModbusMapping::DataBlockReads(int32_t block, int32_t offset, int32_t count,
                                                       std::string& error) const {
  const auto it = dataBlocks.find(block);
  if (it == dataBlocks.end()) {
    error = "data block " + std::to_string(block) +
            " has no holding register address "
            "(map it with --db-map " +
            std::to_string(block) + "=ADDRESS)";
    return {};
  }
  return Reads(int64_t{it->second} + 2 * int64_t{offset}, count, error);
}

std::vector<int32_t> ModbusMapping::Join(std::span<const uint16_t> words) const {
  std::vector<int32_t> values;
  values.reserve(words.size() / 2);
  for (size_t i = 0; i + 1 < words.size(); i += 2) {
    const uint32_t high = wordOrder == WordOrder::HighLow ? words[i] : words[i + 1];
    const uint32_t low = wordOrder == WordOrder::HighLow ? words[i + 1] : words[i];
    values.push_back(static_cast<int32_t>((high << 16) | low));
  }
  return values;
}

void ModbusMapping::Split(int32_t value, uint16_t& first, uint16_t& second) const {
  const auto bits = static_cast<uint32_t>(value);
  const auto high = static_cast<uint16_t>(bits >> 16);
  const auto low = static_cast<uint16_t>(bits & 0xFFFF);
  first = wordOrder == WordOrder::HighLow ? high : low;
  second = wordOrder == WordOrder::HighLow ? low : high;
}

std::optional<ModbusMapping::Place> ModbusMapping::Locate(int32_t holdingAddress) const {
  // The data block whose start is the nearest at or below the address owns it.
  const std::pair<const int32_t, int32_t>* owner = nullptr;
  for (const auto& entry : dataBlocks) {
    if (entry.second <= holdingAddress && (owner == nullptr || entry.second > owner->second)) {
      owner = &entry;
    }
  }
  if (owner != nullptr) {
    const int32_t distance = holdingAddress - owner->second;
    return Place{true, owner->first, distance / 2, distance % 2 == 0};
  }
  const int32_t distance = holdingAddress - registerOffset;
  if (distance < 0) return std::nullopt;
  return Place{false, 0, distance / 2, distance % 2 == 0};
}

}  // namespace vantrel::hosts::modbus
