#include "platform/standin/system_api.h"

#include <algorithm>
#include <cwchar>
#include <limits>

#include "platform/standin/machine.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

constinit thread_local LONG t_last_error = ERROR_SUCCESS;

/// Copies `text` with its terminator; false, and nothing written, when it does not fit.
bool CopyOut(const std::wstring& text, LPWSTR buffer, DWORD size) {
  if (buffer == nullptr || text.size() >= size) return false;
  std::copy_n(text.c_str(), text.size() + 1, buffer);
  return true;
}

DWORD ReadVariable(LPCWSTR name, LPWSTR buffer, DWORD size) {
  const auto value = CurrentMachine()->EnvironmentVariable(name);
  if (!value) return FailWith(ERROR_ENVVAR_NOT_FOUND);
  SetThreadError(ERROR_SUCCESS);  // tells an empty variable from a missing one
  const auto length = static_cast<DWORD>(value->size());
  return CopyOut(*value, buffer, size) ? length : length + 1;
}

BOOL ReadUserName(LPWSTR buffer, DWORD& size) {
  const auto name = CurrentMachine()->UserName();
  if (!name) return FailWith(ERROR_ACCESS_DENIED);
  const bool copied = CopyOut(*name, buffer, size);
  size = static_cast<DWORD>(name->size()) + 1;
  return copied ? TRUE : FailWith(ERROR_INSUFFICIENT_BUFFER);
}

/// Writes as much as fits; a `size` of 0 only measures.
int ConvertToUtf8(std::wstring_view wide, LPSTR narrow, int size) {
  std::size_t length = 0;
  while (!wide.empty()) {
    const Utf8Character encoded = EncodeUtf8(TakeCharacter(wide));
    if (encoded.size == 0) return FailWith(ERROR_NO_UNICODE_TRANSLATION);
    if (size != 0) {
      if (length + encoded.size > static_cast<std::size_t>(size)) return FailWith(ERROR_INSUFFICIENT_BUFFER);
      std::copy_n(encoded.units, encoded.size, narrow + length);
    }
    length += encoded.size;
  }
  return length <= std::numeric_limits<int>::max() ? static_cast<int>(length) : FailWith(ERROR_INVALID_PARAMETER);
}

}  // namespace

LONG ThreadError() noexcept { return t_last_error; }

void SetThreadError(LONG error) noexcept { t_last_error = error; }

extern "C" {

void InitializeCriticalSection(LPCRITICAL_SECTION /*section*/) {
  // The record's own constructor has made the lock.
  Pass(SureCall("InitializeCriticalSection"), Asked(), [] {});
}

void EnterCriticalSection(LPCRITICAL_SECTION section) {
  Pass(SureCall("EnterCriticalSection"), Asked(), [&] { section->mutex.lock(); });
}

void LeaveCriticalSection(LPCRITICAL_SECTION section) {
  Pass(SureCall("LeaveCriticalSection"), Asked(), [&] { section->mutex.unlock(); });
}

void GetLocalTime(LPSYSTEMTIME time) {
  *time = {};
  Pass(SureCall("GetLocalTime"), Asked(), [&] { *time = CurrentMachine()->LocalTime(); });
}

void Sleep(DWORD milliseconds) {
  Pass(SureCall("Sleep"), Asked(milliseconds), [&] { CurrentMachine()->Sleep(milliseconds); });
}

DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size) {
  return Pass(
      ZeroCall<DWORD>("GetEnvironmentVariableW", ERROR_ENVVAR_NOT_FOUND), Asked(name, size),
      [&] { return ReadVariable(name != nullptr ? name : L"", buffer, size); },
      [&](DWORD length) { return length != 0 && length < size ? Described(buffer) : ""; });
}

BOOL GetUserNameW(LPWSTR buffer, LPDWORD size) {
  return Pass(
      ZeroCall<BOOL>("GetUserNameW", ERROR_ACCESS_DENIED), Asked(),
      [&] { return size != nullptr ? ReadUserName(buffer, *size) : FailWith(ERROR_INVALID_PARAMETER); },
      [&](BOOL told) { return told != FALSE ? Described(buffer) : ""; });
}

int WideCharToMultiByte(UINT code_page, DWORD /*flags*/, LPCWSTR wide, int wide_length, LPSTR narrow, int narrow_size,
                        LPCSTR /*default_char*/, LPBOOL used_default_char) {
  return Pass(ZeroCall<int>("WideCharToMultiByte", ERROR_NO_UNICODE_TRANSLATION),
              Asked(code_page, wide_length, narrow_size), [&]() -> int {
                const bool usable = code_page == CP_ACP && wide != nullptr && wide_length != 0 && wide_length >= -1 &&
                                    narrow_size >= 0 && (narrow != nullptr || narrow_size == 0);
                if (!usable) return FailWith(ERROR_INVALID_PARAMETER);
                if (used_default_char != nullptr) *used_default_char = FALSE;
                const std::size_t length =
                    wide_length == -1 ? std::wcslen(wide) + 1 : static_cast<std::size_t>(wide_length);
                return ConvertToUtf8({wide, length}, narrow, narrow_size);
              });
}

DWORD GetLastError() {
  return Pass(SureCall<DWORD>("GetLastError"), Asked(), [] { return static_cast<DWORD>(t_last_error); });
}

void SetLastError(DWORD error) {
  Pass(SureCall("SetLastError"), Asked(error), [&] { SetThreadError(static_cast<LONG>(error)); });
}

}  // extern "C"

}  // namespace platform
