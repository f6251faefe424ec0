/// The door to what else the platform offers: environment, user name, folders, local time, pauses,
/// critical sections, the calling thread's last error, and opening a file by its wide path.
#pragma once

#if defined(_WIN32)

#include "platform/windows.h"

#include <dbghelp.h>

#include <filesystem>
#include <fstream>

namespace platform {

/// Opens `stream` to append bytes to the file at `path`; see the layer's declaration for the contract.
inline void OpenToAppend(std::wofstream& stream, const wchar_t* path) {
  stream.open(std::filesystem::path(path), std::ios_base::out | std::ios_base::app | std::ios_base::binary);
}

}  // namespace platform

#else

#include "platform/standin/system_api.h"

#endif
