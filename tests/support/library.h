/// A library that is loaded at run time, by the system's loader.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#if defined(_WIN32)
#include "platform/windows.h"
#else
#include <dlfcn.h>
#endif

namespace test {

class Library {
 public:
  explicit Library(const std::filesystem::path& path) : library_(Load(path)) {
    if (library_ == nullptr) throw std::runtime_error(path.string() + " cannot be loaded");
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

#if defined(_WIN32)
  ~Library() { FreeLibrary(static_cast<HMODULE>(library_)); }

  void* Find(const std::string& name) const {
    return Found(name, reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library_), name.c_str())));
  }

 private:
  static void* Load(const std::filesystem::path& path) { return LoadLibraryW(path.c_str()); }
#else
  ~Library() { dlclose(library_); }

  /// Throws std::runtime_error when there is no such export.
  void* Find(const std::string& name) const { return Found(name, dlsym(library_, name.c_str())); }

 private:
  static void* Load(const std::filesystem::path& path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }
#endif

  static void* Found(const std::string& name, void* address) {
    return address != nullptr ? address : throw std::runtime_error("no export " + name);
  }

  void* library_;
};

}  // namespace test
