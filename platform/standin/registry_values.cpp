#include "platform/standin/registry_values.h"

#include <algorithm>

#include "platform/standin/text.h"

namespace platform {
namespace {

bool IsKeyOrBelow(std::wstring_view key, std::wstring_view parent) {
  if (key.size() > parent.size() && key[parent.size()] != L'\\') return false;
  return EqualsWithoutCase(key.substr(0, parent.size()), parent);
}

}  // namespace

bool HasKey(const RegistryValues& values, std::wstring_view key) {
  return std::ranges::any_of(values, [key](const auto& entry) { return IsKeyOrBelow(entry.first, key); });
}

std::optional<Bytes> FindValue(const RegistryValues& values, std::wstring_view key, std::wstring_view name) {
  const auto* const found = FindWithoutCase(values, key);
  const Bytes* const value = found == nullptr ? nullptr : FindWithoutCase(*found, name);
  return value == nullptr ? std::nullopt : std::optional(*value);
}

}  // namespace platform
