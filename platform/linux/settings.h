/// The settings files, which stand for the registry on a computer that has none.
///
/// In TOML, a table for each key below HKEY_LOCAL_MACHINE, with its values as numbers of 32 bits:
///
///     [registry.'SOFTWARE\OEM\ZarnLightingService']
///     HybridMode = 1
#pragma once

#include <ctime>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/portable/registry_values.h"

namespace platform {

/// A settings file as it was found.
struct SettingsFile {
  std::filesystem::path path;
  bool is_there = false;
  /// What is wrong with it, one line with the place; then nothing of it counts.
  std::string complaint;
  RegistryValues values;
};

SettingsFile ReadSettingsFile(const std::filesystem::path& path);

/// The files of this computer and of the user that runs the process, in the order in which later ones take precedence:
/// /etc/zarn/settings.toml, and zarn/settings.toml in the user's configuration folder ($XDG_CONFIG_HOME, or ~/.config).
std::vector<std::filesystem::path> SettingsPaths();

/// Registry values from settings files. Reads a file again whenever it has changed, so that a switch works at once. Any
/// thread may call.
class Settings {
 public:
  explicit Settings(std::vector<std::filesystem::path> paths);

  bool HasKey(std::wstring_view key);
  std::optional<Bytes> Value(std::wstring_view key, std::wstring_view name);

 private:
  /// What tells one state of a file from another.
  struct State {
    std::timespec modified = {};
    std::uint64_t size = 0;
    std::uint64_t inode = 0;
    bool is_there = false;
  };
  struct Entry {
    std::filesystem::path path;
    State state;
    RegistryValues values;
  };

  /// Under the lock.
  void Refresh();

  std::mutex lock_;
  std::vector<Entry> entries_;  // guarded by lock_; the last one that has a value wins
};

}  // namespace platform
