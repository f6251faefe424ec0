/// A machine for tests: settable, recording, with a clock of its own.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "log/service_switch.h"
#include "platform/standin/machine.h"
#include "platform/standin/registry_values.h"
#include "tests/support/scripted_hid.h"

namespace test {

using platform::Bytes;
using platform::FirmwareAnswer;
using platform::NamedValues;
using platform::Value;

struct FirmwareCall {
  std::wstring instance;
  std::wstring method;
  Value input;

  friend bool operator==(const FirmwareCall&, const FirmwareCall&) = default;
};

class ScriptedMachine : public platform::Machine {
 public:
  ScriptedMachine() {
    firmware.methods = {{L"SetGamingLED"}, {L"GetGamingLED"}, {L"SetGamingKBBacklight"}, {L"SetGamingRgbKb"}};
    firmware.instance_names = {L"ACPI\\ZARN\\0_0"};
    sleeps_.reserve(64);  // memory may be made to run out during a pause
  }

  // Set before use, or by the thread that alone uses the machine.
  platform::RegistryValues registry;
  std::map<std::wstring, std::wstring, std::less<>> environment;
  std::optional<std::wstring> user = L"user1";
  std::optional<platform::SmbiosTable> smbios;
  platform::FirmwareClass firmware;
  bool has_firmware = true;
  std::function<FirmwareAnswer(const FirmwareCall&)> answer = [](const FirmwareCall&) {
    return FirmwareAnswer{S_OK, {{L"gmOutput", std::uint32_t{0}}}};
  };
  /// The devices plugged in. Taking one out unplugs it, also for handles that are open.
  std::vector<std::shared_ptr<ScriptedHid>> hid_devices;
  SYSTEMTIME now = {2024, 1, 3, 31, 14, 5, 9, 42};

  void SwitchLogOn(const std::string& program_data) {
    registry[kLogSwitch.key][kLogSwitch.value] = {1, 0, 0, 0};
    environment[L"PROGRAMDATA"] = std::wstring(program_data.begin(), program_data.end());
  }
  void SetSmbios(Bytes table) { smbios = {std::move(table), std::uint8_t{3}, std::uint8_t{2}}; }

  std::vector<FirmwareCall> TakeCalls() {
    const std::lock_guard lock(lock_);
    return std::exchange(calls_, {});
  }
  std::vector<std::uint32_t> TakeSleeps() {
    const std::lock_guard lock(lock_);
    std::vector<std::uint32_t> taken = sleeps_;
    sleeps_.clear();  // keeps what is reserved
    return taken;
  }

  bool HasRegistryKey(std::wstring_view key) override { return platform::HasKey(registry, key); }
  std::optional<Bytes> RegistryValue(std::wstring_view key, std::wstring_view name) override {
    return platform::FindValue(registry, key, name);
  }
  std::optional<std::wstring> EnvironmentVariable(std::wstring_view name) override {
    const auto found = environment.find(name);
    return found == environment.end() ? std::nullopt : std::optional(found->second);
  }
  std::optional<std::wstring> UserName() override { return user; }
  SYSTEMTIME LocalTime() override { return now; }
  void Sleep(std::uint32_t milliseconds) override {
    const std::lock_guard lock(lock_);
    sleeps_.push_back(milliseconds);
  }
  std::optional<platform::SmbiosTable> ReadSmbiosTable() override { return smbios; }
  std::optional<platform::FirmwareClass> FindFirmwareClass() override {
    return has_firmware ? std::optional(firmware) : std::nullopt;
  }
  FirmwareAnswer CallFirmware(const std::wstring& instance, const std::wstring& method,
                              const NamedValues& in) override {
    const auto input = in.find(L"gmInput");
    const FirmwareCall call{instance, method, input == in.end() ? Value() : input->second};
    {
      const std::lock_guard lock(lock_);
      calls_.push_back(call);
    }
    return answer(call);
  }
  std::vector<platform::HidDevice> HidDevices() override {
    std::vector<platform::HidDevice> devices;
    for (const auto& hid : hid_devices) devices.push_back(hid->device);
    return devices;
  }
  platform::OpenedHidDevice OpenHidDevice(const std::wstring& path) override {
    for (const auto& hid : hid_devices) {
      if (hid->device.path != path) continue;
      if (hid->open_error != ERROR_SUCCESS) return {hid->open_error, {}, nullptr};
      return {ERROR_SUCCESS, hid->device, std::make_shared<ScriptedConnection>(hid)};
    }
    return {};
  }

  /// Plugs in a device with this descriptor.
  ScriptedHid& Plug(platform::Bytes descriptor) {
    hid_devices.push_back(std::make_shared<ScriptedHid>(std::move(descriptor)));
    hid_devices.back()->device.path += std::to_wstring(++plugged_);
    return *hid_devices.back();
  }

 private:
  int plugged_ = 0;  // over the machine's life
  std::mutex lock_;
  std::vector<FirmwareCall> calls_;    // guarded by lock_
  std::vector<std::uint32_t> sleeps_;  // guarded by lock_
};

/// An SMBIOS table that begins with a structure with strings, followed by the OEM structure with these items.
inline Bytes TableWithItems(std::uint8_t major, std::uint8_t minor, const std::vector<std::pair<int, int>>& items) {
  Bytes table = {0x0B, 0x05, 0x00, 0x0B, 0x01, 'T', 'e', 's', 't', 0, 0};
  const auto length = static_cast<std::uint8_t>(6 + 3 * items.size());
  table.insert(table.end(), {0xAC, length, 0x00, 0xAC, major, minor});
  for (const auto& [id, value] : items) {
    table.insert(table.end(), {static_cast<std::uint8_t>(id), static_cast<std::uint8_t>(value),
                               static_cast<std::uint8_t>(value >> 8)});
  }
  table.insert(table.end(), {0, 0});
  return table;
}

}  // namespace test
