/// Registry values where there is no registry: keys below HKEY_LOCAL_MACHINE, their values, and the values' bytes.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/little_endian.h"
#include "platform/standin/text.h"

namespace platform {

using KeyValues = std::map<std::wstring, std::vector<std::uint8_t>, WithoutCase>;
/// A number as the registry keeps one.
inline std::vector<std::uint8_t> Dword(std::uint32_t number) {
  std::vector<std::uint8_t> bytes(sizeof(number));
  ToLittleEndian(number, bytes);
  return bytes;
}

using RegistryValues = std::map<std::wstring, KeyValues, WithoutCase>;

/// Whether the key is there. A key is also there when one below it is.
bool HasKey(const RegistryValues& values, std::wstring_view key);
std::optional<std::vector<std::uint8_t>> FindValue(const RegistryValues& values, std::wstring_view key,
                                                   std::wstring_view name);

}  // namespace platform
