#include "platform/linux/settings.h"

#include <sys/stat.h>

#include <toml++/toml.h>
#include <algorithm>
#include <cerrno>
#include <limits>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "platform/linux/read_file.h"
#include "platform/linux/user.h"
#include "platform/standin/text.h"
#include "platform/standin/toml_bounds.h"

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

RegistryValues ReadValues(const std::string& text) {
  RegistryValues values;
  const toml::table file = toml::parse(text);
  for (const auto& [name, section] : file) {
    if (name.str() != "registry" || !section.is_table()) {
      Fail(name.source(), "\"" + std::string(name.str()) + "\" is not known here, only tables: [registry.'KEY\\KEY']");
    }
    for (const auto& [key, node] : *section.as_table()) ReadKey(key, node, values);
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
  const std::string text(bytes->begin(), bytes->end());
  if (HasTooManyDots(text)) {
    file.complaint = path.string() + ": more than 1000 dots, so deep no key may be";
    return file;
  }
  try {
    file.values = ReadValues(text);
  } catch (const toml::parse_error& what) {
    file.complaint =
        path.string() + ":" + std::to_string(what.source().begin.line) + ": " + std::string(what.description());
  } catch (const std::runtime_error& what) {
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
    if (stat(entry.path.c_str(), &found) == 0) {
      const Version now = {{found.st_mtim.tv_sec, found.st_mtim.tv_nsec, found.st_ctim.tv_sec, found.st_ctim.tv_nsec},
                           found.st_size,
                           found.st_ino};
      if (now == entry.version) continue;
      SettingsFile file = ReadSettingsFile(entry.path);
      if (file.state == SettingsFile::State::Unreadable) continue;  // until it can be read it counts as it was
      entry.values = std::move(file.values);
      entry.version = now;
    } else if (IsNotThere(errno)) {
      entry.values.clear();
      entry.version = {};
    }
  }
}

}  // namespace platform
