/// The classes that the management service publishes for a machine, as plain values.
#pragma once

#include <optional>
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

}  // namespace platform
