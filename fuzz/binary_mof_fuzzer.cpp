/// Any bytes as a binary MOF: refused with one line, or classes whose methods can be called without surprise.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto block = std::make_unique<std::uint8_t[]>(size);
  std::copy(data, data + size, block.get());
  const platform::BinaryMof mof = platform::ReadBinaryMof({block.get(), size});
  Check(mof.refusal.empty() || mof.classes.empty());
  for (const platform::MofClass& each : mof.classes) {
    Check(!each.name.empty());
    for (const platform::MofMethod& method : each.methods) {
      Check(!Described(method).empty());
      CheckAnswer(method, {block.get(), std::min<std::size_t>(size, 42)});
      platform::PackInput(method, {});
    }
  }
  return 0;
}
