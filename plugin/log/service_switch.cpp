#include "log/service_switch.h"

#include "platform/registry.h"

bool IsOn(const ServiceSwitch& service_switch) {
  DWORD number = 0xFFFFFFFF;  // shorter values leave the rest of it
  HKEY opened = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, service_switch.key, 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  DWORD size = sizeof(number);
  RegQueryValueExW(opened, service_switch.value, nullptr, nullptr, reinterpret_cast<LPBYTE>(&number), &size);
  RegCloseKey(opened);
  return number == 1;
}
