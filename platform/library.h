/// The door to the system's loader of libraries, for hosts.
#pragma once

#include <filesystem>
#include <string>
#include <utility>

#if defined(_WIN32)
#include "platform/windows.h"
#else
#include <dlfcn.h>
#endif

namespace platform {

/// A library that is loaded at run time, and unloaded with its owner.
class Library {
 public:
  /// A name without a folder is searched for as the system does it, beside the program first. Check with operator bool,
  /// and right after a failure with Error.
  explicit Library(const std::filesystem::path& path) : library_(Load(path)) {}
  Library(Library&& other) noexcept : library_(std::exchange(other.library_, nullptr)) {}
  Library& operator=(Library&&) = delete;
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (library_ != nullptr) Unload(library_);
  }

  explicit operator bool() const { return library_ != nullptr; }

#if defined(_WIN32)
  void* Find(const std::string& name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library_), name.c_str()));
  }

  static std::string Error() { return "error " + std::to_string(GetLastError()); }

 private:
  static void* Load(const std::filesystem::path& path) { return LoadLibraryW(path.c_str()); }
  static void Unload(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }
#else
  /// The address of an export; null when there is none of that name.
  void* Find(const std::string& name) const { return dlsym(library_, name.c_str()); }

  static std::string Error() { return dlerror(); }

 private:
  static void* Load(const std::filesystem::path& path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }
  static void Unload(void* library) { dlclose(library); }
#endif

  void* library_;
};

}  // namespace platform
