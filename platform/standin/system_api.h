/// Environment, user name, folders, local time, pauses, critical sections, the last error, files. Any thread may call.
#pragma once

#include <fstream>
#include <ios>
#include <mutex>

#include "platform/standin/windows_types.h"

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;  // 1 to 12
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};
static_assert(sizeof(SYSTEMTIME) == 16);
using LPSYSTEMTIME = SYSTEMTIME*;

struct CRITICAL_SECTION {
  std::recursive_mutex mutex;
};
using LPCRITICAL_SECTION = CRITICAL_SECTION*;

inline constexpr UINT CP_ACP = 0;

extern "C" {

/// A critical section is a lock that its owner may take again.
void InitializeCriticalSection(LPCRITICAL_SECTION section);
void EnterCriticalSection(LPCRITICAL_SECTION section);
void LeaveCriticalSection(LPCRITICAL_SECTION section);

/// Local date and time with milliseconds, all from one reading of the clock.
void GetLocalTime(LPSYSTEMTIME time);
/// Pauses the calling thread.
void Sleep(DWORD milliseconds);

/// Writes the variable's value and answers its length without the terminator. Answers the size needed, terminator
/// included, when `size` characters are too few, and 0 (ERROR_ENVVAR_NOT_FOUND) when there is no such variable.
DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size);
/// Writes the name of the user that runs the process. `*size` is the buffer's length in characters and becomes
/// that of the name, terminator included. FALSE leaves the buffer undefined.
BOOL GetUserNameW(LPWSTR buffer, LPDWORD size);
/// Converts to UTF-8. `wide_length` is -1 for text up to and with its terminator. 0 when it does not fit or
/// cannot be converted.
int WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR wide, int wide_length, LPSTR narrow, int narrow_size,
                        LPCSTR default_char, LPBOOL used_default_char);
/// Creates every missing folder of `path` up to its last separator, `\` or `/`, for this user alone. Refused where
/// another user could interfere, and at the root of the file system.
BOOL MakeSureDirectoryPathExists(PCSTR path);

DWORD GetLastError();
void SetLastError(DWORD error);
}

namespace platform {

/// Opens `stream` to append bytes to the file at `path`, whose separators are backslashes; the stream tells whether it
/// worked. The file is made where it is missing, for this user alone, and others can have it open at the same time.
/// Refused where another user could have put it there, or could exchange it. Sets the calling thread's last error when
/// it fails.
void OpenToAppend(std::wofstream& stream, const wchar_t* path);

}  // namespace platform
