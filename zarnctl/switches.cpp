#include "zarnctl/switches.h"

#include <optional>

#include "base/owner.h"
#include "platform/registry.h"

namespace zarnctl {
namespace {

/// The value as a number; nothing when it is missing or no number of 32 bits.
std::optional<DWORD> NumberOf(const ServiceSwitch& service_switch) {
  Owner<HKEY, RegCloseKey> key;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, service_switch.key, 0, KEY_READ, key.Put()) != ERROR_SUCCESS) return {};
  DWORD number = 0;
  DWORD size = sizeof(number);
  const LONG error =
      RegQueryValueExW(key.Get(), service_switch.value, nullptr, nullptr, reinterpret_cast<LPBYTE>(&number), &size);
  return error == ERROR_SUCCESS && size == sizeof(number) ? std::optional(number) : std::nullopt;
}

}  // namespace

std::string StateOf(const ServiceSwitch& service_switch) {
  if (IsOn(service_switch)) return "on";
  const std::optional<DWORD> number = NumberOf(service_switch);
  return number ? "off, set to " + std::to_string(*number) + " (1 turns it on)" : "off, not set";
}

}  // namespace zarnctl
