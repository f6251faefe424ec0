#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include "platform/standin/platform_call.h"
#include "platform/standin/system_api.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

constexpr Call<BOOL> kMakeSureDirectoryPathExists = ZeroCall<BOOL>("MakeSureDirectoryPathExists", ERROR_ACCESS_DENIED);
constexpr Call<bool> kOpenStream = ZeroCall<bool>("OpenStream", ERROR_ACCESS_DENIED);

std::string WithSlashes(std::string path) {
  std::ranges::replace(path, '\\', '/');
  return path;
}

BOOL MakeFolders(PCSTR path) {
  const std::string file = WithSlashes(path);
  const std::size_t separator = file.rfind('/');
  std::error_code error;
  if (separator != std::string::npos) std::filesystem::create_directories(file.substr(0, separator + 1), error);
  if (error) SetThreadErrorFromErrno(error.value());
  return error ? FALSE : TRUE;
}

bool Open(std::wofstream& stream, const wchar_t* path, std::ios_base::openmode mode) {
  std::string file;
  if (path == nullptr || !AppendUtf8(path, file)) {
    SetThreadError(ERROR_NO_UNICODE_TRANSLATION);
    return false;
  }
  errno = 0;
  stream.open(WithSlashes(std::move(file)), mode);
  if (stream) {
    SetThreadError(ERROR_SUCCESS);
  } else {
    SetThreadErrorFromErrno(errno);
  }
  return static_cast<bool>(stream);
}

}  // namespace

void OpenStream(std::wofstream& stream, const wchar_t* path, std::ios_base::openmode mode) {
  if (Pass(kOpenStream, Asked(path), [&] { return Open(stream, path, mode); })) return;
  try {
    stream.setstate(std::ios_base::failbit);
  } catch (const std::ios_base::failure&) {
    // The stream tells, as it must; its owner asked it to throw, which calls do not.
  }
}

extern "C" {

BOOL MakeSureDirectoryPathExists(PCSTR path) {
  return Pass(kMakeSureDirectoryPathExists, Asked(path), [&] {
    if (path != nullptr) return MakeFolders(path);
    SetThreadError(ERROR_INVALID_PARAMETER);
    return FALSE;
  });
}

}  // extern "C"

}  // namespace platform
