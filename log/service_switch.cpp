#include "log/service_switch.h"

#include "platform/registry.h"

bool ServiceSwitchIsOn(const wchar_t* key, const wchar_t* value) {
  DWORD number = 0xFFFFFFFF;  // shorter values leave the rest of it
  HKEY opened = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, key, 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  DWORD size = sizeof(number);
  RegQueryValueExW(opened, value, nullptr, nullptr, reinterpret_cast<LPBYTE>(&number), &size);
  RegCloseKey(opened);
  return number == 1;
}
