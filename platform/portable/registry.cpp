#include <algorithm>
#include <map>
#include <mutex>

#include "platform/portable/live_counters.h"
#include "platform/portable/machine.h"
#include "platform/portable/no_destructor.h"
#include "platform/portable/platform_call.h"
#include "platform/portable/registry_api.h"
#include "platform/portable/text.h"

namespace platform {
namespace {

constexpr Call<LONG> kRegOpenKeyExW = StatusCall("RegOpenKeyExW", ERROR_FILE_NOT_FOUND);
constexpr Call<LONG> kRegQueryValueExW = StatusCall("RegQueryValueExW", ERROR_FILE_NOT_FOUND);
constexpr Call<LONG> kRegCloseKey = SureCall<LONG>("RegCloseKey");

/// The open keys. A token is a number that is handed out once, so that a closed key is never taken for a later one.
class OpenKeys {
 public:
  HKEY Add(std::wstring name) {
    const std::lock_guard lock(mutex_);
    const std::uintptr_t token = next_token_++;
    names_.emplace(token, std::move(name));
    ++g_live.registry_keys;
    return reinterpret_cast<HKEY>(token);
  }

  std::optional<std::wstring> Name(HKEY key) {
    const std::lock_guard lock(mutex_);
    const auto found = names_.find(reinterpret_cast<std::uintptr_t>(key));
    return found != names_.end() ? std::optional(found->second) : std::nullopt;
  }

  bool Remove(HKEY key) {
    const std::lock_guard lock(mutex_);
    if (names_.erase(reinterpret_cast<std::uintptr_t>(key)) == 0) return false;
    --g_live.registry_keys;
    return true;
  }

 private:
  std::mutex mutex_;
  std::uintptr_t next_token_ = 0x100000000;  // above the predefined keys
  std::map<std::uintptr_t, std::wstring> names_;
};

OpenKeys& Keys() {
  static NoDestructor<OpenKeys> keys;
  return *keys;
}

std::string DescribedKey(HKEY key) {
  const auto name = Keys().Name(key);
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
  const auto key_name = Keys().Name(key);
  if (!key_name) {
    Complain("RegQueryValueExW of a key that is not open");
    return ERROR_INVALID_HANDLE;
  }
  const auto bytes = CurrentMachine()->RegistryValue(*key_name, name != nullptr ? name : L"");
  if (!bytes) return ERROR_FILE_NOT_FOUND;
  if (type != nullptr) *type = REG_BINARY;  // a machine keeps bytes without their type
  return size != nullptr ? CopyOut(*bytes, data, *size) : ERROR_SUCCESS;
}

LONG Close(HKEY key) {
  if (Keys().Remove(key)) return ERROR_SUCCESS;
  Complain("RegCloseKey of a key that is not open");
  return ERROR_INVALID_HANDLE;
}

}  // namespace

extern "C" {

LONG RegOpenKeyExW(HKEY key, LPCWSTR subkey, DWORD /*options*/, REGSAM access, PHKEY result) {
  return Pass(kRegOpenKeyExW, Asked(subkey, access), [&] {
    return subkey != nullptr && result != nullptr ? Open(key, subkey, *result) : ERROR_INVALID_PARAMETER;
  });
}

LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD /*reserved*/, LPDWORD type, LPBYTE data, LPDWORD size) {
  return Pass(
      kRegQueryValueExW,
      [&] {
        return Listed({DescribedKey(key), Described(name)});
      },
      [&] { return Query(key, name, type, data, size); },
      [&](LONG result) {
        const bool copied = result == ERROR_SUCCESS && data != nullptr;
        return copied ? Described(Bytes(data, data + *size)) : "";
      });
}

LONG RegCloseKey(HKEY key) {
  return Pass(
      kRegCloseKey, [&] { return DescribedKey(key); }, [&] { return Close(key); });
}

}  // extern "C"

}  // namespace platform
