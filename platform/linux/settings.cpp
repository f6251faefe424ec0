#include "platform/linux/settings.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/linux/read_file.h"
#include "platform/linux/user.h"
#include "platform/standin/registry_toml.h"

namespace platform {
namespace {

RegistryValues ReadValues(const std::string& text) {
  RegistryValues values;
  const toml::table file = ParseToml(text);
  for (const auto& [name, section] : file) {
    if (name.str() != "registry" || !section.is_table()) {
      throw TomlError(name.source(),
                      "\"" + std::string(name.str()) + "\" is not known here, only tables: [registry.'KEY\\KEY']");
    }
    values = ReadRegistry(*section.as_table());
  }
  return values;
}

bool IsNotThere(int code) { return code == ENOENT || code == ENOTDIR; }

}  // namespace

SettingsFile ReadSettingsFile(const std::filesystem::path& path) {
  SettingsFile file{path, SettingsFile::State::NotThere, {}, {}};
  const std::optional<Bytes> bytes = ReadFile(path, kLongestSettingsFile);
  if (!bytes) {
    const int code = errno;
    if (IsNotThere(code)) return file;
    const bool too_long = code == EFBIG;
    file.state = too_long ? SettingsFile::State::Read : SettingsFile::State::Unreadable;
    file.complaint = path.string() +
                     (too_long ? ": more than 16 KiB" : ": cannot be read: " + std::generic_category().message(code));
    return file;
  }
  file.state = SettingsFile::State::Read;
  try {
    file.values = ReadValues({bytes->begin(), bytes->end()});
  } catch (const std::runtime_error& error) {
    file.complaint = path.string() + error.what();
  }
  return file;
}

std::vector<std::filesystem::path> SettingsPaths() {
  std::vector<std::filesystem::path> paths = {"/etc/zarn/settings.toml"};
  if (const auto folder = UserFolder("XDG_CONFIG_HOME", ".config")) paths.push_back(*folder / "zarn/settings.toml");
  return paths;
}

Settings::Settings(std::vector<std::filesystem::path> paths) {
  for (std::filesystem::path& path : paths) entries_.push_back({std::move(path), {}, {}});
}

bool Settings::HasKey(std::wstring_view key) {
  const std::lock_guard lock(lock_);
  Refresh();
  return std::ranges::any_of(entries_, [key](const Entry& entry) { return platform::HasKey(entry.values, key); });
}

std::optional<Bytes> Settings::Value(std::wstring_view key, std::wstring_view name) {
  const std::lock_guard lock(lock_);
  Refresh();
  std::optional<Bytes> value;
  for (const Entry& entry : entries_) {
    if (auto found = FindValue(entry.values, key, name)) value = std::move(found);
  }
  return value;
}

void Settings::Refresh() {
  for (Entry& entry : entries_) {
    struct stat found = {};
    if (stat(entry.path.c_str(), &found) == 0) {
      const Version now = {{found.st_mtim.tv_sec, found.st_mtim.tv_nsec, found.st_ctim.tv_sec, found.st_ctim.tv_nsec},
                           found.st_size,
                           found.st_ino};
      if (now == entry.version) continue;
      SettingsFile file = ReadSettingsFile(entry.path);
      if (file.state == SettingsFile::State::Unreadable) continue;  // keep what was read before
      entry.values = std::move(file.values);
      entry.version = now;
    } else if (IsNotThere(errno)) {
      entry.values.clear();
      entry.version = {};
    }
  }
}

}  // namespace platform
