/// Numbers as the formats, the firmware's record and the lighting reports carry them: the lowest byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// The number in `bytes`, of which there are 8 at most; 0 for none.
constexpr std::uint64_t FromLittleEndian(std::span<const std::uint8_t> bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) number = number << 8 | bytes[i];
  return number;
}

/// Fills `bytes` with the bytes of `number`, and with zeros behind its eighth.
constexpr void ToLittleEndian(std::uint64_t number, std::span<std::uint8_t> bytes) {
  for (std::uint8_t& each : bytes) {
    each = static_cast<std::uint8_t>(number);
    number >>= 8;
  }
}
