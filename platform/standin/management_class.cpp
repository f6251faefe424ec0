#include "platform/standin/management_class.h"

#include <algorithm>
#include <utility>

#include "platform/standin/text.h"

namespace platform {
namespace {

constexpr wchar_t kInstanceName[] = L"InstanceName";

std::optional<ManagementClass> Firmware() {
  auto firmware = CurrentMachine()->FindFirmwareClass();
  if (!firmware) return std::nullopt;
  ManagementClass definition{std::move(firmware->methods), {}};
  for (Value& name : firmware->instance_names) definition.instances.push_back({{kInstanceName, std::move(name)}});
  return definition;
}

/// There on every machine; its one instance is not.
std::optional<ManagementClass> RawSmbiosTables() {
  ManagementClass definition;
  if (auto table = CurrentMachine()->ReadSmbiosTable()) {
    definition.instances.push_back({{L"SMBiosData", std::move(table->data)},
                                    {L"SmbiosMajorVersion", std::move(table->major)},
                                    {L"SmbiosMinorVersion", std::move(table->minor)}});
  }
  return definition;
}

constexpr struct {
  std::wstring_view name;
  std::optional<ManagementClass> (*read)();
} kClasses[] = {{L"ZarnGamingFunction", Firmware}, {L"MSSMBios_RawSMBiosTables", RawSmbiosTables}};

}  // namespace

std::optional<ManagementClass> FindManagementClass(std::wstring_view name) {
  for (const auto& known : kClasses) {
    if (EqualsWithoutCase(known.name, name)) return known.read();
  }
  return std::nullopt;
}

const std::wstring* FindInstance(const ManagementClass& definition, std::wstring_view name) {
  for (const NamedValues& instance : definition.instances) {
    const auto found = instance.find(kInstanceName);
    const auto* text = found != instance.end() ? std::get_if<std::wstring>(&found->second) : nullptr;
    if (text != nullptr && *text == name) return text;
  }
  return nullptr;
}

const FirmwareClass::Method* FindMethod(const std::vector<FirmwareClass::Method>& methods, std::wstring_view name) {
  const auto found =
      std::ranges::find_if(methods, [&](const auto& method) { return EqualsWithoutCase(method.name, name); });
  return found != methods.end() ? &*found : nullptr;
}

}  // namespace platform
