/// The two languages the management service reads: object paths and queries.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Class.InstanceName="name", in which every backslash of the name is doubled.
struct ObjectPath {
  std::wstring class_name;
  std::wstring instance_name;
};

std::optional<ObjectPath> ParseObjectPath(std::wstring_view path);

/// The class in "SELECT * FROM class"; none for any other query.
std::optional<std::wstring> ParseSelectAll(std::wstring_view query);

}  // namespace platform
