/// The Linux computer that this process runs on: HID devices from hidraw, the SMBIOS table from the kernel, firmware
/// methods from its WMI bus, registry values from settings files, the user's name and folders.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/linux/acpi_call.h"
#include "platform/linux/firmware_class.h"
#include "platform/linux/hidraw.h"
#include "platform/linux/settings.h"
#include "platform/standin/machine.h"

namespace platform {

/// Where a Linux system keeps what the machine asks for.
struct LinuxPlaces {
  HidrawPlaces hidraw;
  std::filesystem::path smbios = "/sys/firmware/dmi/tables";
  std::vector<std::filesystem::path> settings = SettingsPaths();
  std::filesystem::path wmi_devices = "/sys/bus/wmi/devices";
  AcpiCallPlaces acpi_call = {};
};

class LinuxMachine final : public Machine {
 public:
  explicit LinuxMachine(LinuxPlaces places = {});

  bool HasRegistryKey(std::wstring_view key) override;
  std::optional<Bytes> RegistryValue(std::wstring_view key, std::wstring_view name) override;
  std::optional<std::wstring> EnvironmentVariable(std::wstring_view name) override;
  std::optional<std::wstring> UserName() override;
  /// Needs the right to read the kernel's table, which as a rule root alone has.
  std::optional<SmbiosTable> ReadSmbiosTable() override;
  /// Needs the right to read the firmware's binary MOF, which root alone has. Once found, the class stays.
  std::optional<FirmwareClass> FindFirmwareClass() override;
  /// Needs root and the kernel's module acpi_call: see CallAcpi for what fails, and when it blocks. With
  /// acpi=strict it fails as if the module were missing.
  FirmwareAnswer CallFirmware(const std::wstring& instance_name, const std::wstring& method,
                              const NamedValues& in) override;
  std::vector<HidDevice> HidDevices() override;
  OpenedHidDevice OpenHidDevice(const std::wstring& path) override;

 private:
  struct Firmware {
    FirmwareOnBus on_bus;
    FirmwareClass published;
  };
  /// Null while there is none. What was found stays as long as the machine.
  const Firmware* FindFirmware();

  const LinuxPlaces places_;
  Settings settings_;
  const bool kernel_is_strict_;
  std::mutex lock_;
  std::optional<const Firmware> firmware_;  // its making is guarded by lock_
  const std::shared_ptr<RestingDevices> resting_ = std::make_shared<RestingDevices>();
};

}  // namespace platform
