/// The cases over the platform's registry, files and COM. Management service and HID devices come from the layer:
/// forward.h says how the plug-in reaches them.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/registry.h"
#include "platform/standin/instruments.h"
#include "platform/standin/machine.h"
#include "platform/standin/report_descriptor.h"
#include "platform/wmi.h"
#include "simulator/road/notebook_machine.h"
#include "tests/cases/road.h"
#include "tests/support/temporary_folder.h"
#include "tests/windows/management_service.h"

namespace test {
namespace {

namespace fs = std::filesystem;

/// The notebook's firmware, SMBIOS table and HID devices. The devices are files, so that the platform's own calls open
/// and close them. Each plugging in makes new files, one for each interface: "2-5" is the third keyboard's fifth.
class NotebookInFiles final : public platform::Machine {
 public:
  explicit NotebookInFiles(std::shared_ptr<simulator::Notebook> notebook)
      : notebook_(std::move(notebook)), machine_(simulator::MakeMachine(notebook_)) {}

  std::optional<platform::SmbiosTable> ReadSmbiosTable() override { return machine_->ReadSmbiosTable(); }
  std::optional<platform::FirmwareClass> FindFirmwareClass() override { return machine_->FindFirmwareClass(); }
  platform::FirmwareAnswer CallFirmware(const std::wstring& instance_name, const std::wstring& method,
                                        const platform::NamedValues& in) override {
    platform::FirmwareAnswer answer = machine_->CallFirmware(instance_name, method, in);
    for (auto& [name, value] : answer.out) value = AsTheServiceHasIt(std::move(value));
    return answer;
  }

  std::vector<platform::HidDevice> HidDevices() override {
    std::vector<platform::HidDevice> devices;
    for (std::size_t i = 0; i < notebook_->HidKeyboardCount(); ++i) {
      const auto connection = notebook_->HidKeyboardAt(i).Connect();
      if (!connection) continue;
      devices.push_back(DeviceAt(i, folder_.path() / (std::to_string(i) + "-" + std::to_string(*connection))));
      MakeFiles(devices.back());
    }
    return devices;
  }

  platform::OpenedHidDevice OpenHidDevice(const std::wstring& path) override {
    const std::string name = fs::path(path).filename().string();
    const std::size_t dash = name.find('-');
    if (fs::path(path).parent_path() != folder_.path() || dash == std::string::npos) return {};
    const std::size_t keyboard = std::stoul(name);
    return {ERROR_SUCCESS, DeviceAt(keyboard, path),
            simulator::MakeConnection(notebook_, keyboard, std::stoull(name.substr(dash + 1)))};
  }

 private:
  /// Windows' service gives unsigned numbers of 32 bits as signed ones, and numbers of 64 bits as text.
  static platform::Value AsTheServiceHasIt(platform::Value value) {
    if (const auto* const number = std::get_if<std::uint32_t>(&value)) return static_cast<std::int32_t>(*number);
    if (const auto* const number = std::get_if<std::uint64_t>(&value)) return std::to_wstring(*number);
    return value;
  }

  platform::HidDevice DeviceAt(std::size_t index, const fs::path& path) const {
    const simulator::HidKeyboard& keyboard = notebook_->HidKeyboardAt(index);
    return {path.wstring(), keyboard.settings().vendor, keyboard.settings().product, 0x0100,
            keyboard.report_descriptor()};
  }

  static void MakeFiles(const platform::HidDevice& device) {
    const std::size_t count = platform::ParseReportDescriptor(device.report_descriptor).collections.size();
    std::ofstream file(fs::path(device.path));
    for (std::size_t i = 1; i <= count; ++i)
      file = std::ofstream(fs::path(device.path + L"&col0" + std::to_wstring(i)));
  }

  const std::shared_ptr<simulator::Notebook> notebook_;
  const std::shared_ptr<platform::Machine> machine_;
  const TemporaryFolder folder_;
};

class WineRoad final : public Road {
 public:
  WineRoad() {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    platform::ReplaceManagementService();
  }

  std::string Name() const override { return "Wine"; }
  std::string WhyNot(Need /*need*/) const override { return ""; }

  void Place(const std::shared_ptr<simulator::Notebook>& notebook) override {
    const simulator::Profile& profile = notebook->profile();
    for (const auto& [key, values] : profile.registry) WriteKey(key, values);
    for (const auto& [name, value] : profile.environment) SetEnvironmentVariableW(name.c_str(), value.c_str());
    EXPECT_TRUE(platform::UseMachine(std::make_shared<NotebookInFiles>(notebook)));
  }
  void Settle() override {}
  void TakeAway() override {
    EXPECT_EQ(platform::CountLive(), platform::LiveCounts{});
    EXPECT_EQ(platform::TakeComplaints(), std::vector<std::string>{});
    EXPECT_TRUE(platform::UseMachine(std::make_shared<platform::Machine>()));
    EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\OEM\\ZarnLightingService"), ERROR_SUCCESS);
  }

 private:
  static void WriteKey(const std::wstring& key, const platform::KeyValues& values) {
    HKEY opened = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &opened, nullptr),
              ERROR_SUCCESS);
    for (const auto& [name, bytes] : values) {
      EXPECT_EQ(RegSetValueExW(opened, name.c_str(), 0, bytes.size() == sizeof(DWORD) ? REG_DWORD : REG_BINARY,
                               bytes.data(), static_cast<DWORD>(bytes.size())),
                ERROR_SUCCESS);
    }
    RegCloseKey(opened);
  }
};

}  // namespace

Road& TheRoad() {
  static WineRoad road;
  return road;
}

}  // namespace test
