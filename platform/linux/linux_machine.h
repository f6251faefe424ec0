/// The Linux computer that this process runs on: HID devices from hidraw, the SMBIOS table from the kernel, registry
/// values from settings files, the user's name and folders. It has no management service with firmware methods.
#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/linux/hidraw.h"
#include "platform/linux/settings.h"
#include "platform/standin/machine.h"

namespace platform {

/// Where a Linux system keeps what the machine asks for.
struct LinuxPlaces {
  HidrawPlaces hidraw;
  std::filesystem::path smbios = "/sys/firmware/dmi/tables";
  std::vector<std::filesystem::path> settings = SettingsPaths();
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
  std::vector<HidDevice> HidDevices() override;
  OpenedHidDevice OpenHidDevice(const std::wstring& path) override;

 private:
  const LinuxPlaces places_;
  Settings settings_;
  const std::shared_ptr<RestingDevices> resting_ = std::make_shared<RestingDevices>();
};

}  // namespace platform
