#include "vantrel/hosts/modbus/modbus_mapping.h"

#include <algorithm>
#include <charconv>

namespace vantrel::hosts::modbus {
namespace {

// A whole decimal number, nothing before or after it.
bool Number(std::string_view text, int64_t& value) {
  if (text.empty() || text.size() > 12) return false;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size();
}

std::string Quoted(std::string_view text) {
  return "'" + std::string(text) + "'";
}

std::vector<HoldingRead> Reads(int64_t address, int64_t registers, std::string& error) {
  if (registers < 0) {
    error = "cannot read " + std::to_string(registers) + " registers";
    return {};
  }
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
  const std::string form = "a Modbus controller is written modbus://HOST:PORT, not " + Quoted(text);
  if (text.substr(0, kScheme.size()) != kScheme) {
    error = form;
    return std::nullopt;
  }
  std::string_view rest = text.substr(kScheme.size());
  if (!rest.empty() && rest.back() == '/') rest.remove_suffix(1);
  Endpoint endpoint;
  std::string_view host;
  std::string_view port;
  bool hasPort = false;
  if (!rest.empty() && rest.front() == '[') {
    // An IPv6 address: its colons are not the port's.
    const size_t close = rest.find(']');
    if (close == std::string_view::npos) {
      error = form;
      return std::nullopt;
    }
    host = rest.substr(1, close - 1);
    const std::string_view after = rest.substr(close + 1);
    if (!after.empty() && after.front() != ':') {
      error = form;
      return std::nullopt;
    }
    hasPort = !after.empty();
    if (hasPort) port = after.substr(1);
  } else {
    const size_t colon = rest.find(':');
    host = rest.substr(0, colon);
    hasPort = colon != std::string_view::npos;
    if (hasPort) port = rest.substr(colon + 1);
    if (port.find(':') != std::string_view::npos) {
      error =
          "an IPv6 address is written in brackets: modbus://[ADDRESS]:PORT, not " + Quoted(text);
      return std::nullopt;
    }
  }
  if (host.empty()) {
    error = Quoted(text) + " names no host";
    return std::nullopt;
  }
  if (host.find_first_of(" \t/?#@[]") != std::string_view::npos) {
    error = form;
    return std::nullopt;
  }
  endpoint.host = std::string(host);
  if (hasPort) {
    int64_t number = 0;
    if (!Number(port, number) || number < 1 || number > 65535) {
      error = "the port of " + Quoted(text) + " must be a number from 1 to 65535";
      return std::nullopt;
    }
    endpoint.port = static_cast<int>(number);
  }
  return endpoint;
}

bool IsUnitId(int unit) {
  return (unit >= 0 && unit <= 247) || unit == 255;
}

std::optional<int> ParseUnit(std::string_view text, std::string& error) {
  int64_t unit = 0;
  if (!Number(text, unit) || unit < 0 || unit > 255 || !IsUnitId(static_cast<int>(unit))) {
    error = "the unit id is a number from 0 to 247, or 255, not " + Quoted(text);
    return std::nullopt;
  }
  return static_cast<int>(unit);
}

bool ModbusMapping::SetWordOrder(std::string_view text, std::string& error) {
  if (text == "hi-lo") {
    wordOrder = WordOrder::HighLow;
  } else if (text == "lo-hi") {
    wordOrder = WordOrder::LowHigh;
  } else {
    error = "the word order is hi-lo or lo-hi, not " + Quoted(text);
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
    error = "a data block is mapped as BLOCK=ADDRESS (block 0 to 32767, address 0 to 65535), not " +
            Quoted(text);
    return false;
  }
  dataBlocks[static_cast<int32_t>(block)] = static_cast<int32_t>(address);
  return true;
}

bool ModbusMapping::SetRegisterOffset(std::string_view text, std::string& error) {
  int64_t offset = 0;
  if (!Number(text, offset) || offset < 0 || offset >= kAddressSpace) {
    error = "the register offset is a holding register from 0 to 65535, not " + Quoted(text);
    return false;
  }
  registerOffset = static_cast<int32_t>(offset);
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
            " has no holding register address (map it with --db-map " + std::to_string(block) +
            "=ADDRESS)";
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
  // The region (the registers, or a data block) with the nearest start at or below the
  // address owns it.
  std::optional<Place> owner;
  int32_t ownerStart = 0;
  if (registerOffset <= holdingAddress) {
    owner = Place{false, 0, 0, true};
    ownerStart = registerOffset;
  }
  for (const auto& [block, start] : dataBlocks) {
    if (start <= holdingAddress && (!owner || start >= ownerStart)) {
      // Of two blocks at the same address, the lower number keeps it.
      if (owner && owner->dataBlock && start == ownerStart) continue;
      owner = Place{true, block, 0, true};
      ownerStart = start;
    }
  }
  if (!owner) return std::nullopt;
  const int32_t distance = holdingAddress - ownerStart;
  owner->index = distance / 2;
  owner->firstHalf = distance % 2 == 0;
  return owner;
}

}  // namespace vantrel::hosts::modbus
