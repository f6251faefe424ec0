/// The settings files, which stand for the registry on a computer that has none.
///
/// In TOML, a table for each key below HKEY_LOCAL_MACHINE, with its values as numbers of 32 bits:
///
///     [registry.'SOFTWARE\OEM\ZarnLightingService']
///     HybridMode = 1
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/machine.h"
#include "platform/standin/registry_values.h"

namespace platform {

/// A settings file as it was found.
struct SettingsFile {
  enum class State { NotThere, Unreadable, Read };

  std::filesystem::path path;
  State state = State::NotThere;
  /// What is wrong with the file, and where; then there are no values. Quotes the file, which may hold anything.
  std::string complaint;
  RegistryValues values;
};

/// In bytes. The time for reading grows with the square of the length, and hosts wait for it.
inline constexpr std::size_t kLongestSettingsFile = 16384;

SettingsFile ReadSettingsFile(const std::filesystem::path& path);

/// The files of this computer and of the user that runs the process, in the order in which later ones take precedence:
/// /etc/zarn/settings.toml, and zarn/settings.toml in the user's configuration folder ($XDG_CONFIG_HOME, or ~/.config).
std::vector<std::filesystem::path> SettingsPaths();

/// Registry values from settings files. Reads a file again whenever it has changed, so that a switch works at once.
/// When that fails, as in a process out of file descriptors, the values read before count. Any thread may call.
class Settings {
 public:
  explicit Settings(std::vector<std::filesystem::path> paths);

  bool HasKey(std::wstring_view key);
  std::optional<Bytes> Value(std::wstring_view key, std::wstring_view name);

 private:
  /// Tells versions of a file apart: when its content changed, when its rights or the like did, and which file it is.
  struct Version {
    std::array<std::int64_t, 4> times = {};
    std::int64_t size = 0;
    std::uint64_t inode = 0;

    bool operator==(const Version&) const = default;
  };
  struct Entry {
    std::filesystem::path path;
    Version version;
    RegistryValues values;
  };

  /// Call it under the lock.
  void Refresh();

  std::mutex lock_;
  std::vector<Entry> entries_;  // guarded by lock_; the last one that has a value wins
};

}  // namespace platform
