/// The door to the system's loader of libraries, for hosts.
#pragma once

#include <filesystem>
#include <string>

#if defined(_WIN32)
#include <array>

#include "platform/windows.h"
#else
#include <dlfcn.h>
#endif

namespace platform {

/// A library that is loaded at run time, and unloaded with its owner unless that asks to keep it.
class Library {
 public:
  /// A name without a folder is searched for beside the program, and elsewhere than on Windows where the system looks.
  /// Check with operator bool, and right after a failure with Error.
  explicit Library(const std::filesystem::path& path) : library_(Load(path)) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (library_ != nullptr && !kept_) Unload(library_);
  }

  explicit operator bool() const { return library_ != nullptr; }

  /// Leaves the library loaded to the end of the process.
  void Keep() { kept_ = true; }

  // Find: the address of an export; null when there is none of that name. Error: why the file at `path` was not loaded,
  // in UTF-8.

#if defined(_WIN32)
  void* Find(const std::string& name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library_), name.c_str()));
  }

  static std::string Error(const std::filesystem::path& path) {
    const DWORD error = GetLastError();
    std::array<wchar_t, 512> why{};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
                   error, 0, why.data(), static_cast<DWORD>(why.size()), nullptr);
    const std::u8string text = path.u8string() + u8": " + std::filesystem::path(why.data()).u8string();
    return std::string(text.begin(), text.end()) + "(error " + std::to_string(error) + ")";
  }

 private:
  static void* Load(const std::filesystem::path& path) {
    // A bare name is looked for beside the program alone, not where somebody else may have put one.
    return LoadLibraryExW(
        path.c_str(), nullptr,
        path.has_parent_path() ? 0 : LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
  }
  static void Unload(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }
#else
  void* Find(const std::string& name) const { return dlsym(library_, name.c_str()); }

  static std::string Error(const std::filesystem::path& /*path*/) { return dlerror(); }

 private:
  static void* Load(const std::filesystem::path& path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }
  static void Unload(void* library) { dlclose(library); }
#endif

  void* library_;
  bool kept_ = false;
};

}  // namespace platform
