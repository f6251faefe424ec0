#include <algorithm>

#include "platform/standin/machine.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/system_api.h"

namespace platform {
namespace {

constexpr Call<DWORD> kGetEnvironmentVariableW = ZeroCall<DWORD>("GetEnvironmentVariableW", ERROR_ENVVAR_NOT_FOUND);
constexpr Call<BOOL> kGetUserNameW = ZeroCall<BOOL>("GetUserNameW", ERROR_ACCESS_DENIED);

/// Copies `text` with its terminator; false, and nothing written, when it does not fit.
bool CopyOut(const std::wstring& text, LPWSTR buffer, DWORD size) {
  if (buffer == nullptr || text.size() >= size) return false;
  std::copy_n(text.c_str(), text.size() + 1, buffer);
  return true;
}

DWORD ReadVariable(LPCWSTR name, LPWSTR buffer, DWORD size) {
  const auto value = CurrentMachine()->EnvironmentVariable(name);
  if (!value) {
    SetThreadError(ERROR_ENVVAR_NOT_FOUND);
    return 0;
  }
  SetThreadError(ERROR_SUCCESS);  // tells an empty variable from a missing one
  const auto length = static_cast<DWORD>(value->size());
  return CopyOut(*value, buffer, size) ? length : length + 1;
}

BOOL ReadUserName(LPWSTR buffer, DWORD& size) {
  const auto name = CurrentMachine()->UserName();
  if (!name) {
    SetThreadError(ERROR_ACCESS_DENIED);
    return FALSE;
  }
  const bool copied = CopyOut(*name, buffer, size);
  size = static_cast<DWORD>(name->size()) + 1;
  if (!copied) SetThreadError(ERROR_INSUFFICIENT_BUFFER);
  return copied ? TRUE : FALSE;
}

}  // namespace

extern "C" {

DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size) {
  return Pass(
      kGetEnvironmentVariableW, Asked(name, size),
      [&] { return ReadVariable(name != nullptr ? name : L"", buffer, size); },
      [&](DWORD length) { return length != 0 && length < size ? Described(buffer) : ""; });
}

BOOL GetUserNameW(LPWSTR buffer, LPDWORD size) {
  return Pass(
      kGetUserNameW, Asked(),
      [&] {
        if (size != nullptr) return ReadUserName(buffer, *size);
        SetThreadError(ERROR_INVALID_PARAMETER);
        return FALSE;
      },
      [&](BOOL told) { return told != FALSE ? Described(buffer) : ""; });
}

}  // extern "C"

}  // namespace platform
