#pragma once
// Where controller registers and data-block words live among Modbus holding registers: a
// signed 32-bit register n is the pair of 16-bit holding registers at offset + 2n (high word
// first unless the word order says otherwise); word k of data block d is the pair at the
// block's mapped address + 2k.

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::hosts::modbus {

enum class WordOrder { HighLow, LowHigh };

struct Endpoint {
  std::string host;
  int port = 502;
};

// "modbus://HOST:PORT" (the port may be left out; an IPv6 address is written in brackets,
// "modbus://[::1]:1502"); nullopt with `error` set on bad text.
std::optional<Endpoint> ParseEndpoint(std::string_view text, std::string& error);

// The text of "--unit N": a Modbus TCP unit id, 0 to 247 or 255.
std::optional<int> ParseUnit(std::string_view text, std::string& error);
bool IsUnitId(int unit);

// One read of holding registers: at most kMaxReadWords, never cutting a 32-bit register.
struct HoldingRead {
  int32_t address = 0;
  int32_t words = 0;
  bool operator==(const HoldingRead&) const = default;
};

// The protocol allows 125 holding registers per read; an even count keeps pairs whole.
inline constexpr int32_t kMaxReadWords = 124;
inline constexpr int32_t kAddressSpace = 65536;

struct ModbusMapping {
  int32_t registerOffset = 0;
  WordOrder wordOrder = WordOrder::HighLow;
  std::map<int32_t, int32_t> dataBlocks;  // data block number -> first holding register

  // "hi-lo" or "lo-hi".
  bool SetWordOrder(std::string_view text, std::string& error);
  // "d=ADDR".
  bool AddDataBlock(std::string_view text, std::string& error);
  // "N", the holding register of controller register 0.
  bool SetRegisterOffset(std::string_view text, std::string& error);

  // The holding registers of `count` controller registers from `first`, as reads of at most
  // kMaxReadWords in address order; empty with `error` set when they lie outside the 16-bit
  // address space or the count is negative (a count of 0 needs no read and is no error).
  std::vector<HoldingRead> RegisterReads(int32_t first, int32_t count, std::string& error) const;
  // The same for words of a data block; an unmapped block is an error.
  std::vector<HoldingRead> DataBlockReads(int32_t block, int32_t offset, int32_t count,
                                          std::string& error) const;

  // Pairs of holding registers to 32-bit values (a trailing odd word is ignored), and back.
  std::vector<int32_t> Join(std::span<const uint16_t> words) const;
  void Split(int32_t value, uint16_t& first, uint16_t& second) const;

  // What a holding register holds, for a server: the controller register or data-block word
  // it belongs to and which half. The registers and each data block own the addresses from
  // their first holding register up to the next one's; where a block starts at the register
  // offset itself, the block has it. Addresses below all of them hold nothing.
  struct Place {
    bool dataBlock = false;
    int32_t block = 0;
    int32_t index = 0;  // register number, or word within the block
    bool firstHalf = true;
  };
  std::optional<Place> Locate(int32_t holdingAddress) const;
};

}  // namespace vantrel::hosts::modbus
