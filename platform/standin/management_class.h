/// The classes that the management service publishes for a machine, as plain values, and the two languages in which it
/// is asked for them: object paths and queries.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/standin/machine.h"

namespace platform {

struct ManagementClass {
  std::vector<FirmwareClass::Method> methods;
  std::vector<NamedValues> instances;
};

/// The class called `name`, compared without case; none where the machine does not have it.
std::optional<ManagementClass> FindManagementClass(std::wstring_view name);

/// The name under which one of `instances` is found by its path; null when none is.
const std::wstring* FindInstance(const ManagementClass& definition, std::wstring_view name);
const FirmwareClass::Method* FindMethod(const std::vector<FirmwareClass::Method>& methods, std::wstring_view name);

/// Class.InstanceName="name", in which every backslash of the name is doubled.
struct ObjectPath {
  std::wstring class_name;
  std::wstring instance_name;
};

std::optional<ObjectPath> ParseObjectPath(std::wstring_view path);

/// The class in "SELECT * FROM class"; none for any other query.
std::optional<std::wstring> ParseSelectAll(std::wstring_view query);

}  // namespace platform
