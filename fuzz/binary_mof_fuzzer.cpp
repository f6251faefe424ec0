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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto block = std::make_unique<std::uint8_t[]>(size);
  std::copy(data, data + size, block.get());
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
  return 0;
}
