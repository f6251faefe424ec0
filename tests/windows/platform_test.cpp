/// The plug-in over the platform itself: registry, log file, threads, HID devices, the management service. There is no
/// firmware and no keyboard of the family.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "hid/ts_hid.h"
#include "log/service_switch.h"
#include "log/ts_log.h"
#include "platform/registry.h"
#include "tests/support/plugin.h"
#include "zarn_lighting/plugin.h"

// After the platform's main header.
#include <tlhelp32.h>

namespace test {
namespace {

class RegistryTest : public testing::Test {
 protected:
  void TearDown() override { RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\OEM\\ZarnLightingService"); }

  static void Set(const ServiceSwitch& service_switch, DWORD type, const std::vector<std::uint8_t>& bytes) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, service_switch.key, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(key, service_switch.value, 0, type, bytes.data(), static_cast<DWORD>(bytes.size())),
              ERROR_SUCCESS);
    RegCloseKey(key);
  }
};

TEST_F(RegistryTest, ASwitchIsOnWhenItsFourBytesAreAOneWhateverTheType) {
  EXPECT_FALSE(IsOn(kHybridSwitch)) << "no key";
  Set(kLogSwitch, REG_DWORD, {1, 0, 0, 0});
  EXPECT_FALSE(IsOn(kHybridSwitch)) << "no value";
  constexpr std::array<DWORD, 8> kTypes = {REG_DWORD,     REG_DWORD_BIG_ENDIAN, REG_BINARY, REG_SZ,
                                           REG_EXPAND_SZ, REG_MULTI_SZ,         REG_NONE,   REG_QWORD};
  for (const DWORD type : kTypes) {
    const auto is_on = [type](const std::vector<std::uint8_t>& bytes) {
      Set(kHybridSwitch, type, bytes);
      return IsOn(kHybridSwitch);
    };
    EXPECT_TRUE(is_on({1, 0, 0, 0})) << type;
    const std::vector<std::uint8_t> kOff[] = {{}, {1}, {1, 0, 0}, {2, 0, 0, 0}, {1, 0, 0, 1}, {1, 0, 0, 0, 0, 0, 0, 0}};
    for (const auto& bytes : kOff) EXPECT_FALSE(is_on(bytes)) << type << " with " << bytes.size() << " bytes";
    const bool is_text = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
    EXPECT_EQ(is_on({1, 0}), is_text) << type << ": the platform ends a text that has no end";
  }
}

TEST_F(RegistryTest, TheLogStandsBelowTheProgramDataFolderUnderTheUsersName) {
  const TemporaryFolder folder;
  SetEnvironmentVariableW(L"PROGRAMDATA", folder.path().c_str());
  EXPECT_EQ(TsLog::GetInstance(), nullptr);
  Set(kLogSwitch, REG_DWORD, {1, 0, 0, 0});
  TsLog* const log = TsLog::GetInstance();
  ASSERT_NE(log, nullptr);
  EXPECT_TRUE(log->WriteLine(TsLog::Info, L"CheckDeviceStatus", L"Enter!!"));
  EXPECT_TRUE(log->WriteLine(TsLog::Error, L"", L"second"));

  std::array<wchar_t, 257> user{};
  auto size = static_cast<DWORD>(user.size());
  ASSERT_TRUE(GetUserNameW(user.data(), &size));
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path() / "OEM/ZarnLightingService/Log"))
    files.push_back(entry.path());
  ASSERT_EQ(files.size(), 1U);
  const std::wstring name = files[0].filename().wstring();
  EXPECT_EQ(name.substr(0, name.size() - 12), std::wstring(user.data()) + L"_ZarnECKeyboard_");
  const std::string text = ContentOf(files[0]);
  EXPECT_EQ(text.substr(0, 12), "[INFO]      ");
  EXPECT_EQ(text.substr(33, 56), " | ZarnECKeyboard | CheckDeviceStatus | Enter!!\r\n[ERROR]");
  EXPECT_TRUE(text.ends_with(" | ZarnECKeyboard |  | second\r\n")) << text;
}

/// The threads of this process.
std::size_t CountThreads() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  std::size_t count = 0;
  for (BOOL more = Thread32First(snapshot, &entry); more != FALSE; more = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  }
  CloseHandle(snapshot);
  return count;
}

TEST(Dll, ADeviceHasOneThreadAndTheLibraryNone) {
  { const Plugin warm; }  // lets the platform start its own threads first
  const std::size_t before = CountThreads();
  {
    const Plugin plugin;
    EXPECT_EQ(CountThreads(), before);
    auto device = plugin.Create("ZarnHIDKeyboard");
    EXPECT_EQ(CountThreads(), before + 1);
    device.reset();
    EXPECT_EQ(CountThreads(), before);
  }
  EXPECT_EQ(CountThreads(), before);
  EXPECT_EQ(GetModuleHandleW(L"zarn_lighting.dll"), nullptr);
}

TEST(Dll, ServesAHostByNameAndSlot) {
  const Plugin plugin;
  EXPECT_EQ(plugin.Discover(), (Discovered{0, L"as it was", 3, L"", L""}));
  const auto device = plugin.Create("ZarnECKeyboard");
  EXPECT_EQ(Take(CallSlot<std::uint8_t*>(device.get(), 7, std::uint32_t{3})), Take(device->PackDescription(3)));
  EXPECT_EQ(DescriptionOf(*device).mode_list.size(), 9U);
  CallSlot(device.get(), 6, std::int32_t{2});
  EXPECT_EQ(CallSlot<std::int32_t>(device.get(), 5), 2);
  CallSlot(device.get(), 30);
  CallSlot(device.get(), 32);
  EXPECT_EQ(device->CurrentModeIndex(), 0);
  device->AddChangeListener([](void* /*context*/) { throw std::runtime_error("a host's own"); }, nullptr);
  EXPECT_THROW(device->NotifyChangeListeners(), std::runtime_error) << "it passes through the library";
}

TEST(Hid, DevicesOfTheSystemAreEnumeratedOpenedAndAsked) {
  using zarn::WRV520::TsHID;
  std::vector<_HIDDevice> devices;
  const bool any = TsHID::GetHIDDeviceHandle([](auto...) { return true; }, [](auto&) { return true; }, devices);
  EXPECT_EQ(any, !devices.empty());
  EXPECT_FALSE(devices.empty()) << "Wine brings a mouse and a keyboard";
  for (const _HIDDevice& device : devices) {
    EXPECT_NE(device.devicePath.find(L"hid"), std::wstring::npos);
    HIDP_CAPS caps{};
    EXPECT_TRUE(TsHID::GetHIDCapability(device.handle, caps));
    EXPECT_EQ(caps.UsagePage, device.usagePage);
    std::vector<HIDP_VALUE_CAPS> values;
    EXPECT_EQ(TsHID::GetHIDValueCapability(device.handle, values), caps.NumberFeatureValueCaps != 0);
    std::array<std::uint8_t, TsHID::kFeatureBufferSize> report{};
    EXPECT_FALSE(TsHID::GetHIDFeature(device.handle, 0xA1, report.data()));
    EXPECT_TRUE(CloseHandle(device.handle));
  }
}

}  // namespace
}  // namespace test
