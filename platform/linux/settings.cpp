#include "platform/linux/settings.h"

#include <sys/stat.h>

#include <toml++/toml.h>
#include <algorithm>
#include <limits>

#include "platform/linux/home.h"
#include "platform/portable/text.h"

namespace platform {
namespace {

/// Throws std::runtime_error with what is wrong and where.
[[noreturn]] void Fail(const toml::source_region& where, const std::string& what) {
  throw std::runtime_error(std::to_string(where.begin.line) + ": " + what);
}

Bytes Dword(std::uint32_t number) {
  Bytes bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  return bytes;
}

std::wstring Wide(const toml::key& key) { return WideFromUtf8(key.str()); }

void ReadKey(const toml::key& key, const toml::node& node, RegistryValues& values) {
  if (!node.is_table()) Fail(key.source(), std::string(key.str()) + " must be a table: [registry.'KEY\\KEY']");
  if (FindWithoutCase(values, Wide(key)) != nullptr) Fail(key.source(), std::string(key.str()) + " is there already");
  auto& read = values[Wide(key)];
  for (const auto& [name, value] : *node.as_table()) {
    const auto number = value.value_exact<std::int64_t>();
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint32_t>::max()) {
      Fail(name.source(), std::string(name.str()) + " must be a whole number from 0 to 4294967295");
    }
    if (FindWithoutCase(read, Wide(name)) != nullptr)
      Fail(name.source(), std::string(name.str()) + " is there already");
    read[Wide(name)] = Dword(static_cast<std::uint32_t>(*number));
  }
}

RegistryValues ReadValues(const std::filesystem::path& path) {
  RegistryValues values;
  const toml::table file = toml::parse_file(path.string());
  for (const auto& [name, section] : file) {
    if (name.str() != "registry" || !section.is_table()) {
      Fail(name.source(), "\"" + std::string(name.str()) + "\" is not known here, only tables: [registry.'KEY\\KEY']");
    }
    for (const auto& [key, node] : *section.as_table()) ReadKey(key, node, values);
  }
  return values;
}

}  // namespace

SettingsFile ReadSettingsFile(const std::filesystem::path& path) {
  SettingsFile file{path, false, {}, {}};
  std::error_code error;
  file.is_there = std::filesystem::exists(path, error);
  if (!file.is_there) return file;
  try {
    file.values = ReadValues(path);
  } catch (const toml::parse_error& what) {
    file.complaint =
        path.string() + ":" + std::to_string(what.source().begin.line) + ": " + std::string(what.description());
  } catch (const std::exception& what) {
    file.complaint = path.string() + ":" + what.what();
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
    State now;
    if (stat(entry.path.c_str(), &found) == 0)
      now = {found.st_mtim, static_cast<std::uint64_t>(found.st_size), found.st_ino, true};
    const State& before = entry.state;
    const bool same = now.is_there == before.is_there && now.inode == before.inode && now.size == before.size &&
                      now.modified.tv_sec == before.modified.tv_sec && now.modified.tv_nsec == before.modified.tv_nsec;
    if (same) continue;
    entry.values = ReadSettingsFile(entry.path).values;
    entry.state = now;
  }
}

}  // namespace platform
