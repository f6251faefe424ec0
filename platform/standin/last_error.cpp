#include "platform/standin/last_error.h"

#include <cerrno>

#include "platform/standin/platform_call.h"
#include "platform/standin/system_api.h"

namespace platform {
namespace {

constinit thread_local DWORD t_last_error = 0;

constexpr Call<DWORD> kGetLastError = SureCall<DWORD>("GetLastError");
constexpr Call<Nothing> kSetLastError = SureCall("SetLastError");

}  // namespace

LONG ThreadError() noexcept { return static_cast<LONG>(t_last_error); }

void SetThreadError(LONG error) noexcept { t_last_error = static_cast<DWORD>(error); }

void SetThreadErrorFromErrno(int code) noexcept {
  static constexpr struct {
    int code;
    LONG error;
  } kErrors[] = {{ENOENT, ERROR_FILE_NOT_FOUND},   {ENOTDIR, ERROR_PATH_NOT_FOUND}, {EACCES, ERROR_ACCESS_DENIED},
                 {EPERM, ERROR_ACCESS_DENIED},     {EROFS, ERROR_ACCESS_DENIED},    {EISDIR, ERROR_ACCESS_DENIED},
                 {ENOMEM, ERROR_NOT_ENOUGH_MEMORY}};
  for (const auto& known : kErrors) {
    if (known.code == code) return SetThreadError(known.error);
  }
  SetThreadError(ERROR_INVALID_PARAMETER);
}

extern "C" {

DWORD GetLastError() {
  return Pass(kGetLastError, Asked(), [] { return t_last_error; });
}

void SetLastError(DWORD error) {
  Pass(kSetLastError, Asked(error), [&] { SetThreadError(static_cast<LONG>(error)); });
}

}  // extern "C"

}  // namespace platform
