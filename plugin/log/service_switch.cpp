#include "log/service_switch.h"

#include "base/owner.h"
#include "platform/registry.h"

bool IsOn(const ServiceSwitch& service_switch) {
  DWORD number = 0xFFFFFFFF;  // a value below 4 bytes leaves the upper ones, so it is not 1
  Owner<HKEY, RegCloseKey> key;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, service_switch.key, 0, KEY_READ, key.Put()) != ERROR_SUCCESS) return false;
  DWORD size = sizeof(number);
  RegQueryValueExW(key.Get(), service_switch.value, nullptr, nullptr, reinterpret_cast<LPBYTE>(&number), &size);
  return number == 1;
}
