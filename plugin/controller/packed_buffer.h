/// A buffer in one of the binary formats, on its way to its receiver.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

/// Allocated with `new std::uint8_t[]`, so that `bytes.release()` can be handed to a host.
struct PackedBuffer {
  std::unique_ptr<std::uint8_t[]> bytes;
  std::size_t size = 0;

  std::span<const std::uint8_t> view() const { return {bytes.get(), size}; }
};
