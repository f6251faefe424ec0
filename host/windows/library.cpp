#include "host/library.h"

#include <windows.h>

#include <array>

namespace zarn::host {

Library::Library(const std::filesystem::path& path)
    // A bare name is looked for only where others cannot put a file. A path is taken as it stands.
    : library_(path.has_parent_path()
                   ? LoadLibraryW(std::filesystem::absolute(path).c_str())
                   : LoadLibraryExW(path.c_str(), nullptr,
                                    LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32)) {}

Library::~Library() {
  if (library_ != nullptr && !kept_) FreeLibrary(static_cast<HMODULE>(library_));
}

void* Library::Find(const std::string& name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library_), name.c_str()));
}

std::string Library::LoadError(const std::filesystem::path& path) {
  const DWORD error = GetLastError();
  std::array<wchar_t, 512> why{};
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
                 error, 0, why.data(), static_cast<DWORD>(why.size()), nullptr);
  const std::u8string text = path.u8string() + u8": " + std::filesystem::path(why.data()).u8string();
  return std::string(text.begin(), text.end()) + "(error " + std::to_string(error) + ")";
}

}  // namespace zarn::host
