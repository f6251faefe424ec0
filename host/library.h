/// The system's loader of libraries.
#pragma once

#include <filesystem>
#include <string>

namespace zarn::host {

/// A library loaded at run time. Its destruction unloads it, unless Keep was called.
class Library {
 public:
  /// A name without a folder is looked for beside the program and in the system's own folder on Windows, and where
  /// dlopen looks on Linux. Check with operator bool, and right after a failure on the same thread with LoadError.
  explicit Library(const std::filesystem::path& path);
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library();

  explicit operator bool() const { return library_ != nullptr; }

  /// Leaves the library loaded to the end of the process.
  void Keep() { kept_ = true; }

  /// The address of an export; null when there is none of that name.
  void* Find(const std::string& name) const;

  /// Why the file at `path` was not loaded, in UTF-8.
  static std::string LoadError(const std::filesystem::path& path);

 private:
  void* library_;
  bool kept_ = false;
};

}  // namespace zarn::host
