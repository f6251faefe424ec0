#include "zarnctl/switches.h"

#include "base/owner.h"
#include "platform/registry.h"

namespace zarnctl {

std::string StateOf(const ServiceSwitch& service_switch) {
  if (IsOn(service_switch)) return "on";
  Owner<HKEY, RegCloseKey> key;
  DWORD number = 0;
  DWORD size = sizeof(number);
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, service_switch.key, 0, KEY_READ, key.Put()) != ERROR_SUCCESS ||
      RegQueryValueExW(key.Get(), service_switch.value, nullptr, nullptr, reinterpret_cast<LPBYTE>(&number), &size) !=
          ERROR_SUCCESS ||
      size != sizeof(number)) {
    return "off, not set";
  }
  return "off, set to " + std::to_string(number) + " (1 turns it on)";
}

}  // namespace zarnctl
