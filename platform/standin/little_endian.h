/// Numbers as bytes, the lowest first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace platform {

/// Of more than 4 bytes the first four count.
constexpr std::uint32_t FromLittleEndian(std::span<const std::uint8_t> bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < bytes.size() && i < sizeof(number); ++i) number |= std::uint32_t{bytes[i]} << (8 * i);
  return number;
}

/// The lowest `size` bytes.
inline std::vector<std::uint8_t> ToLittleEndian(std::uint32_t number, std::size_t size) {
  std::vector<std::uint8_t> bytes(size);
  for (std::size_t i = 0; i < size && i < sizeof(number); ++i) bytes[i] = static_cast<std::uint8_t>(number >> (8 * i));
  return bytes;
}

}  // namespace platform
