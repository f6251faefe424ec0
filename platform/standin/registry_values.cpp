#include "platform/standin/registry_values.h"

namespace platform {

bool HasKey(const RegistryValues& values, std::wstring_view key) {
  if (values.contains(key)) return true;
  const std::wstring beginning = std::wstring(key) + L'\\';
  const auto below = values.lower_bound(beginning);
  return below != values.end() && EqualsWithoutCase(below->first.substr(0, beginning.size()), beginning);
}

std::optional<std::vector<std::uint8_t>> FindValue(const RegistryValues& values, std::wstring_view key,
                                                   std::wstring_view name) {
  const auto found = values.find(key);
  if (found == values.end()) return std::nullopt;
  const auto value = found->second.find(name);
  return value != found->second.end() ? std::optional(value->second) : std::nullopt;
}

}  // namespace platform
