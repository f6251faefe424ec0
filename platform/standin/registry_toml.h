/// TOML files of foreign origin, and the tables in them that stand for a registry.
#pragma once

#include <stdexcept>
#include <string>

#include <toml++/toml.h>

#include "platform/standin/registry_values.h"

namespace platform {

/// A file that is refused. what() goes behind the file's name, as in ":3: Y must be text". It quotes the file, which
/// may hold anything.
class TomlError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  TomlError(const toml::source_region& where, const std::string& what)
      : runtime_error(":" + std::to_string(where.begin.line) + ": " + what) {}
};

/// Throws TomlError. The caller has bounded the length: the time that the library takes grows with its square.
toml::table ParseToml(const std::string& text);

/// Reads the tables of a section "registry", [registry.'KEY\KEY'], with numbers of 32 bits in them. Throws TomlError.
RegistryValues ReadRegistry(const toml::table& section);

}  // namespace platform
