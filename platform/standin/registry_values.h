/// Registry values of a machine that has no registry: keys below HKEY_LOCAL_MACHINE, their values, and the values'
/// bytes.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/machine.h"

namespace platform {

using RegistryValues = std::map<std::wstring, std::map<std::wstring, Bytes>>;

/// Whether the key is there, be it because one below it is. Names compare without case.
bool HasKey(const RegistryValues& values, std::wstring_view key);
std::optional<Bytes> FindValue(const RegistryValues& values, std::wstring_view key, std::wstring_view name);

}  // namespace platform
