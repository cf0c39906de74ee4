#pragma once
// Modbus TCP requests as a server sees them: a 7-byte header (transaction id, protocol id 0,
// the length of what follows counting the unit id, the unit id), then the function code and
// its data. The server reads whatever bytes have come, takes every complete request out of
// them and appends each reply to what it sends back.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "vantrel/hosts/modbus/modbus_mapping.h"
#include "vantrel/hosts/register_space.h"

namespace vantrel::hosts::modbus {

inline constexpr size_t kRequestHeaderBytes = 7;
inline constexpr size_t kMaxRequestBytes = 260;

enum ExceptionCode : uint8_t {
  kIllegalFunction = 1,
  kIllegalDataAddress = 2,
  kIllegalDataValue = 3,
};

// The size of the first request in `received`: 0 while it has not fully arrived, nullopt when
// the bytes cannot be a Modbus TCP request (the client is then dropped).
std::optional<size_t> FirstRequestSize(std::span<const uint8_t> received);

// Appends the reply to one complete request to `out`: the holding registers asked for by a
// read (function 3) as the register space holds them now, or an exception response.
void AppendReply(std::span<const uint8_t> request, const RegisterSpace& space,
                 const ModbusMapping& mapping, std::vector<uint8_t>& out);

}  // namespace vantrel::hosts::modbus
