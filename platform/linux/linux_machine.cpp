#include "platform/linux/linux_machine.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/linux/firmware_parameters.h"
#include "platform/linux/read_file.h"
#include "platform/linux/user.h"
#include "platform/standin/text.h"
#include "platform/standin/wmi_api.h"

namespace platform {
namespace {

/// Major and minor version of the standard, out of the table's entry point: of 32 or of 64 bits.
std::optional<std::pair<std::uint8_t, std::uint8_t>> VersionIn(const Bytes& entry_point) {
  const auto begins_with = [&](std::string_view anchor) {
    return entry_point.size() > anchor.size() && std::equal(anchor.begin(), anchor.end(), entry_point.begin());
  };
  const std::size_t major = begins_with("_SM3_") ? 7 : begins_with("_SM_") ? 6 : 0;
  if (major == 0 || entry_point.size() < major + 2) return std::nullopt;
  return std::pair(entry_point[major], entry_point[major + 1]);
}

FirmwareClass Published(const FirmwareOnBus& firmware) {
  FirmwareClass published;
  for (const MofMethod& method : firmware.methods) {
    const bool has_input = std::ranges::any_of(method.parameters, &MofParameter::is_input);
    published.methods.push_back({method.name, has_input, Described(method)});
  }
  published.instance_names.assign(firmware.instances.begin(), firmware.instances.end());
  return published;
}

}  // namespace

std::shared_ptr<Machine> MakeThisComputer() { return std::make_shared<LinuxMachine>(); }

LinuxMachine::LinuxMachine(LinuxPlaces places)
    : places_(std::move(places)),
      settings_(places_.settings),
      kernel_is_strict_(KernelIsStrict(places_.acpi_call.command_line)) {}

bool LinuxMachine::HasRegistryKey(std::wstring_view key) { return settings_.HasKey(key); }

std::optional<Bytes> LinuxMachine::RegistryValue(std::wstring_view key, std::wstring_view name) {
  return settings_.Value(key, name);
}

std::optional<std::wstring> LinuxMachine::EnvironmentVariable(std::wstring_view name) { return ProcessVariable(name); }

std::optional<std::wstring> LinuxMachine::UserName() {
  const auto name = CurrentUser();
  return name ? std::optional(WideFromUtf8(*name)) : std::nullopt;
}

std::optional<SmbiosTable> LinuxMachine::ReadSmbiosTable() {
  auto table = ReadFile(places_.smbios / "DMI");
  if (!table) return std::nullopt;
  const auto entry_point = ReadFile(places_.smbios / "smbios_entry_point");
  const auto version = entry_point ? VersionIn(*entry_point) : std::nullopt;
  const auto [major, minor] = version.value_or(std::pair<std::uint8_t, std::uint8_t>());
  return SmbiosTable{*std::move(table), major, minor};
}

/// Firmware stays as it is, but what shows it may be loaded later, so only what was found is kept.
const LinuxMachine::Firmware* LinuxMachine::FindFirmware() {
  const std::lock_guard lock(lock_);
  if (!firmware_) {
    FirmwareOnBus found = FindFirmwareOnBus(places_.wmi_devices);
    if (found.state != FirmwareSearch::Found) return nullptr;
    FirmwareClass published = Published(found);
    firmware_.emplace(Firmware{std::move(found), std::move(published)});
  }
  return &*firmware_;
}

std::optional<FirmwareClass> LinuxMachine::FindFirmwareClass() {
  const Firmware* const firmware = FindFirmware();
  return firmware != nullptr ? std::optional(firmware->published) : std::nullopt;
}

FirmwareAnswer LinuxMachine::CallFirmware(const std::wstring& instance_name, const std::wstring& method,
                                          const NamedValues& in) {
  const Firmware* const firmware = FindFirmware();
  if (firmware == nullptr) return {Status(WBEM_E_NOT_FOUND), {}};
  const FirmwareOnBus& on_bus = firmware->on_bus;
  const auto instance = std::ranges::find(on_bus.instances, instance_name);
  const auto called = std::ranges::find(on_bus.methods, method, &MofMethod::name);
  if (instance == on_bus.instances.end() || called == on_bus.methods.end()) return {Status(WBEM_E_NOT_FOUND), {}};
  if (kernel_is_strict_) return {Status(WBEM_E_PROVIDER_LOAD_FAILURE), {}};
  const auto input = PackInput(*called, in);
  if (!input) return {Status(WBEM_E_INVALID_PARAMETER), {}};
  const auto number = static_cast<std::size_t>(instance - on_bus.instances.begin());
  const AcpiAnswer answer = CallAcpi(places_.acpi_call.call_file, on_bus.acpi_method, number, *called->id, *input);
  if (FAILED(answer.status)) return {answer.status, {}};
  return {S_OK, UnpackOutput(*called, answer.bytes)};
}

std::vector<HidDevice> LinuxMachine::HidDevices() {
  std::vector<HidDevice> devices;
  for (HidrawDevice& found : FindHidrawDevices(places_.hidraw)) devices.push_back(std::move(found.device));
  return devices;
}

OpenedHidDevice LinuxMachine::OpenHidDevice(const std::wstring& path) {
  return OpenHidrawDevice(places_.hidraw, path, resting_);
}

}  // namespace platform
