#include "platform/standin/registry_toml.h"

#include <algorithm>
#include <limits>

namespace platform {
namespace {

/// More than settings or a profile need, with those in comments and texts. The library recurses for each part of a
/// dotted key, when it reads keys and when it frees them, so one long key would exhaust the stack. It bounds nested
/// values itself.
constexpr int kMostDots = 1000;

KeyValues ReadKey(const toml::table& table) {
  KeyValues values;
  for (const auto& [name, node] : table) {
    const auto number = node.value_exact<std::int64_t>();
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint32_t>::max()) {
      throw TomlError(name.source(), std::string(name.str()) + " must be a whole number from 0 to 4294967295");
    }
    const bool is_new = values.emplace(WideFromUtf8(name.str()), Dword(static_cast<std::uint32_t>(*number))).second;
    if (!is_new) throw TomlError(name.source(), std::string(name.str()) + " is there already");
  }
  return values;
}

}  // namespace

toml::table ParseToml(const std::string& text) {
  if (std::ranges::count(text, '.') > kMostDots) throw TomlError(": more than 1000 dots, so deep no key may be");
  try {
    return toml::parse(text);
  } catch (const toml::parse_error& error) {
    throw TomlError(error.source(), std::string(error.description()));
  }
}

RegistryValues ReadRegistry(const toml::table& section) {
  RegistryValues values;
  for (const auto& [key, node] : section) {
    const std::string name(key.str());
    if (!node.is_table()) throw TomlError(key.source(), name + " must be a table: [registry.'KEY\\KEY']");
    const bool is_new = values.emplace(WideFromUtf8(name), ReadKey(*node.as_table())).second;
    if (!is_new) throw TomlError(key.source(), name + " is there already");
  }
  return values;
}

}  // namespace platform
