/// Reading the registry. Key and value names compare without case. Any thread may call.
#pragma once

#include "platform/standin/windows_types.h"

using HKEY = void*;
using PHKEY = HKEY*;
using REGSAM = DWORD;

inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000002));
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr DWORD REG_BINARY = 3;

extern "C" {

/// Opens `subkey` below HKEY_LOCAL_MACHINE; the caller closes what it gets. ERROR_FILE_NOT_FOUND when there is
/// no such key.
LONG RegOpenKeyExW(HKEY key, LPCWSTR subkey, DWORD options, REGSAM access, PHKEY result);
/// Copies the stored bytes of a value into `data` when they fit into `*size` bytes, and sets `*size` to their
/// number; a shorter value leaves the rest of the buffer alone. ERROR_MORE_DATA for a longer value, which leaves
/// the whole buffer alone; ERROR_FILE_NOT_FOUND for a missing one. `type` may be null; the type is not examined.
LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size);
/// Closes a key; ERROR_INVALID_HANDLE, and a complaint (see instruments.h), for one that is not open.
LONG RegCloseKey(HKEY key);
}
