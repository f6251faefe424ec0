/// Any bytes as a binary MOF, packed and unpacked: refused with one line, or classes whose methods can be called
/// without surprise.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/little_endian.h"
#include "fuzz/check.h"
#include "platform/linux/firmware_parameters.h"

namespace {

/// Each value that came out takes room in the answer, arrays the room of their bytes.
void CheckAnswer(const platform::MofMethod& method, std::span<const std::uint8_t> answer) {
  std::size_t bytes = 0;
  for (const auto& [name, value] : platform::UnpackOutput(method, answer)) {
    const auto* const array = std::get_if<platform::Bytes>(&value);
    bytes += array != nullptr ? array->size() : 1;
  }
  Check(bytes <= answer.size());
}

/// Values of the kinds that a host sends, in all the places where the method takes some.
void CheckInput(const platform::MofMethod& method) {
  platform::NamedValues in;
  std::size_t bytes = 0;
  for (const platform::MofParameter& parameter : method.parameters) {
    if (!parameter.is_input) continue;
    const std::uint32_t length = std::min(parameter.length.value_or(5), 1000U);
    if (parameter.is_array) in[parameter.name] = platform::Bytes(length);
    if (!parameter.is_array) in[parameter.name] = L"127";
    bytes += parameter.is_array ? length : 16;
  }
  const auto packed = platform::PackInput(method, in);
  Check(!packed || packed->size() <= bytes);
}

/// The blob of these unpacked bytes, without copies. In a packed one a changed bit spoils all that follow, so that few
/// inputs would get behind the unpacking.
platform::Bytes Packed(std::span<const std::uint8_t> unpacked) {
  platform::Bytes blob = {'F', 'O', 'M', 'B', 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 'D', 'S', 0, 1};
  std::uint32_t bits = 0;
  unsigned count = 0;
  const auto put = [&](std::uint32_t value, unsigned width) {
    bits |= value << count;
    for (count += width; count >= 8; count -= 8, bits >>= 8) blob.push_back(static_cast<std::uint8_t>(bits));
  };
  for (const std::uint8_t byte : unpacked) put((byte >= 0x80 ? 1U : 2U) | (byte & 0x7FU) << 2, 9);
  put(0x7FFF, 15);  // the mark
  put(0, 7);
  ToLittleEndian(blob.size() - 16, std::span(blob).subspan(8, 4));
  ToLittleEndian(unpacked.size(), std::span(blob).subspan(12, 4));
  return blob;
}

void CheckBlob(std::span<const std::uint8_t> bytes) {
  const std::size_t size = bytes.size();
  const auto block = std::make_unique<std::uint8_t[]>(size);
  std::ranges::copy(bytes, block.get());
  const platform::BinaryMof mof = platform::ReadBinaryMof({block.get(), size});
  Check(mof.refusal.empty() || mof.classes.empty());
  Check(mof.refusal.find('\n') == std::string::npos);
  for (const platform::MofClass& each : mof.classes) {
    Check(!each.name.empty());
    for (const platform::MofMethod& method : each.methods) {
      Check(!Described(method).empty());
      CheckAnswer(method, {block.get(), std::min<std::size_t>(size, 42)});
      CheckInput(method);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CheckBlob({data, size});
  CheckBlob(Packed({data, size}));
  return 0;
}
