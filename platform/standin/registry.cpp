#include <algorithm>
#include <string>

#include "platform/standin/machine.h"
#include "platform/standin/open_things.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/registry_api.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

/// The names of the open keys.
OpenThings<std::wstring>& Keys() {
  static NoDestructor<OpenThings<std::wstring>> keys(g_live.registry_keys);
  return *keys;
}

/// A key, to be shown in the journal by its name.
struct OpenKey {
  HKEY key;
};
std::string Described(OpenKey open) {
  const auto name = Keys().Find(open.key);
  return name ? ReadableUtf8(*name) : "not open";
}

LONG Open(HKEY key, LPCWSTR subkey, HKEY& result) {
  if (key != HKEY_LOCAL_MACHINE) return ERROR_INVALID_HANDLE;
  if (!CurrentMachine()->HasRegistryKey(subkey)) return ERROR_FILE_NOT_FOUND;
  result = Keys().Add(subkey);
  return ERROR_SUCCESS;
}

LONG CopyOut(const Bytes& bytes, LPBYTE data, DWORD& size) {
  const DWORD room = size;
  size = static_cast<DWORD>(bytes.size());
  if (data == nullptr) return ERROR_SUCCESS;
  if (bytes.size() > room) return ERROR_MORE_DATA;
  std::ranges::copy(bytes, data);
  return ERROR_SUCCESS;
}

LONG Query(HKEY key, LPCWSTR name, LPDWORD type, LPBYTE data, LPDWORD size) {
  if (data != nullptr && size == nullptr) return ERROR_INVALID_PARAMETER;
  const auto key_name = Keys().Find(key);
  if (!key_name) {
    Complain("RegQueryValueExW of a key that is not open");
    return ERROR_INVALID_HANDLE;
  }
  const auto bytes = CurrentMachine()->RegistryValue(*key_name, name != nullptr ? name : L"");
  if (!bytes) return ERROR_FILE_NOT_FOUND;
  if (type != nullptr) *type = REG_BINARY;  // a machine keeps bytes without their type
  return size != nullptr ? CopyOut(*bytes, data, *size) : ERROR_SUCCESS;
}

LONG CloseKey(HKEY key) {
  if (Keys().Remove(key)) return ERROR_SUCCESS;
  Complain("RegCloseKey of a key that is not open");
  return ERROR_INVALID_HANDLE;
}

}  // namespace

extern "C" {

LONG RegOpenKeyExW(HKEY key, LPCWSTR subkey, DWORD /*options*/, REGSAM access, PHKEY result) {
  return Pass(StatusCall("RegOpenKeyExW", ERROR_FILE_NOT_FOUND), Asked(subkey, access), [&] {
    return subkey != nullptr && result != nullptr ? Open(key, subkey, *result) : ERROR_INVALID_PARAMETER;
  });
}

LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD /*reserved*/, LPDWORD type, LPBYTE data, LPDWORD size) {
  return Pass(
      StatusCall("RegQueryValueExW", ERROR_FILE_NOT_FOUND), Asked(OpenKey{key}, name),
      [&] { return Query(key, name, type, data, size); },
      [&](LONG result) {
        const bool copied = result == ERROR_SUCCESS && data != nullptr;
        return copied ? platform::Described(std::span<const std::uint8_t>(data, *size)) : "";
      });
}

LONG RegCloseKey(HKEY key) {
  return Pass(Sure(StatusCall("RegCloseKey", ERROR_INVALID_HANDLE)), Asked(OpenKey{key}),
              [&] { return CloseKey(key); });
}

}  // extern "C"

}  // namespace platform
