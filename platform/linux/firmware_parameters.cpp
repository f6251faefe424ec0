#include "platform/linux/firmware_parameters.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "base/little_endian.h"

namespace platform {
namespace {

bool IsSigned(const MofType& type) { return *type.name == 's'; }

bool IsByteArray(const MofParameter& parameter) { return parameter.is_array && parameter.type->number == kMofUint8; }

struct Number {
  bool is_negative = false;
  std::uint64_t magnitude = 0;
};

std::optional<Number> FromDecimal(std::wstring_view text) {
  Number number{text.starts_with(L'-')};
  std::string digits;
  for (const wchar_t c : text.substr(number.is_negative ? 1 : 0)) {
    if (c < L'0' || c > L'9') return std::nullopt;
    digits += static_cast<char>(c);
  }
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number.magnitude);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<Number> NumberOf(const Value& value) {
  return std::visit(
      [](const auto& held) -> std::optional<Number> {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::wstring>) {
          return FromDecimal(held);
        } else if constexpr (std::is_unsigned_v<Held>) {
          return Number{false, held};
        } else if constexpr (std::is_signed_v<Held>) {
          return Number{held < 0, static_cast<std::uint64_t>(held < 0 ? -std::int64_t{held} : held)};
        } else {
          return std::nullopt;
        }
      },
      value);
}

bool Fits(const Number& number, const MofType& type) {
  const std::uint64_t all = std::numeric_limits<std::uint64_t>::max() >> (64 - 8 * type.size);
  if (!IsSigned(type)) return number.magnitude <= (number.is_negative ? 0 : all);
  return number.magnitude <= all / 2 + (number.is_negative ? 1 : 0);
}

std::size_t Aligned(std::size_t place, std::size_t size) { return (place + size - 1) / size * size; }

bool Append(const MofParameter& parameter, const Value& value, Bytes& bytes) {
  if (IsByteArray(parameter)) {
    const auto* const array = std::get_if<Bytes>(&value);
    if (array == nullptr) return false;
    bytes.insert(bytes.end(), array->begin(), array->end());
    return true;
  }
  const MofType& type = *parameter.type;
  const auto number = NumberOf(value);
  if (parameter.is_array || type.size == 0 || !number || !Fits(*number, type)) return false;
  bytes.resize(Aligned(bytes.size(), type.size) + type.size);
  ToLittleEndian(number->is_negative ? 0 - number->magnitude : number->magnitude, std::span(bytes).last(type.size));
  return true;
}

Value ValueFrom(std::span<const std::uint8_t> bytes, const MofType& type) {
  const std::uint64_t number = FromLittleEndian(bytes);
  switch (type.size) {
    case 8:
      return IsSigned(type) ? std::to_wstring(static_cast<std::int64_t>(number)) : std::to_wstring(number);
    case 4:
      return static_cast<std::int32_t>(number);
    case 2:
      return IsSigned(type) ? std::int32_t{static_cast<std::int16_t>(number)} : static_cast<std::int32_t>(number);
    default:
      if (IsSigned(type)) return std::int32_t{static_cast<std::int8_t>(number)};
      return static_cast<std::uint8_t>(number);
  }
}

}  // namespace

std::optional<Bytes> PackInput(const MofMethod& method, const NamedValues& in) {
  Bytes bytes;
  std::size_t packed = 0;
  for (const MofParameter& parameter : method.parameters) {
    if (!parameter.is_input) continue;
    const auto found = in.find(parameter.name);
    if (found == in.end() || !Append(parameter, found->second, bytes)) return std::nullopt;
    ++packed;
  }
  return packed == in.size() ? std::optional(std::move(bytes)) : std::nullopt;
}

NamedValues UnpackOutput(const MofMethod& method, std::span<const std::uint8_t> answer) {
  NamedValues out;
  std::size_t at = 0;
  for (const MofParameter& parameter : method.parameters) {
    if (parameter.is_input) continue;
    const std::size_t size = IsByteArray(parameter) ? 1 : parameter.type->size;
    if (size == 0 || parameter.is_array != IsByteArray(parameter)) break;
    at = Aligned(at, size);
    if (at >= answer.size()) break;
    const auto rest = answer.subspan(at);
    if (parameter.is_array) {
      const auto array = rest.first(std::min<std::size_t>(parameter.length.value_or(rest.size()), rest.size()));
      out[parameter.name] = Bytes(array.begin(), array.end());
      at += array.size();
    } else {
      if (rest.size() < size) break;
      out[parameter.name] = ValueFrom(rest.first(size), *parameter.type);
      at += size;
    }
  }
  return out;
}

}  // namespace platform
