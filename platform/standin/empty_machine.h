/// A machine on which nothing is there but the clock: the base of those that have some of it.
#pragma once

#include "platform/standin/machine.h"

namespace platform {

class EmptyMachine : public Machine {
 public:
  bool HasRegistryKey(std::wstring_view key) override;
  std::optional<Bytes> RegistryValue(std::wstring_view key, std::wstring_view name) override;
  std::optional<std::wstring> EnvironmentVariable(std::wstring_view name) override;
  std::optional<std::wstring> UserName() override;
  /// The computer's own clock in its own time zone.
  SYSTEMTIME LocalTime() override;
  /// Really pauses.
  void Sleep(std::uint32_t milliseconds) override;
  std::optional<SmbiosTable> ReadSmbiosTable() override;
  std::optional<FirmwareClass> FindFirmwareClass() override;
  FirmwareAnswer CallFirmware(const std::wstring& instance_name, const std::wstring& method,
                              const NamedValues& in) override;
  std::vector<HidDevice> HidDevices() override;
  OpenedHidDevice OpenHidDevice(const std::wstring& path) override;
};

}  // namespace platform
