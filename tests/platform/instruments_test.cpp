#include <filesystem>
#include <new>
#include <stdexcept>

#include "platform/hid.h"
#include "platform/registry.h"
#include "platform/system.h"
#include "platform/wmi.h"
#include "tests/support/machine_fixture.h"
#include "tests/support/temporary_folder.h"

namespace {

using InstrumentsTest = test::MachineTest;

/// Runs `call` with a fault of its own.
template <typename Call>
auto Failing(Call call) {
  platform::ArmFaults({});
  const auto answer = call();
  EXPECT_EQ(platform::DisarmFaults(), 1U);
  return answer;
}

TEST_F(InstrumentsTest, CallsFailInTheirOwnWayAndDoNothing) {
  wchar_t wide[8] = L"";
  HKEY key = nullptr;
  VARIANT value = {};
  EXPECT_EQ(Failing([] { return SysAllocString(L""); }), nullptr);
  EXPECT_EQ(Failing([&] { return VariantChangeType(&value, &value, 0, VT_UI4); }), E_OUTOFMEMORY);
  EXPECT_EQ(Failing([&] { return RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"A", 0, KEY_READ, &key); }), 2);
  EXPECT_EQ(Failing([&] { return GetEnvironmentVariableW(L"A", wide, 8); }), 0U);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
  const test::TemporaryFolder folder;
  EXPECT_EQ(Failing([&] { return MakeSureDirectoryPathExists((folder.path() / "a/").c_str()); }), FALSE);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(InstrumentsTest, JournalTellsWhatACallWasAboutAndHowItFailed) {
  const std::wstring device = machine->Plug(test::VendorCollection(0xFF5A, {}, 1)).device.path;
  machine->hid_devices.back()->fail = [](auto) { return ERROR_SEM_TIMEOUT; };
  machine->environment[L"EMPTY"] = L"";
  std::vector<std::string> entries;
  platform::SetJournal([&](const platform::JournalEntry& entry) {
    entries.push_back(entry.call + " | " + entry.subject + " | " + (entry.failed ? "failed " : "") +
                      std::to_string(entry.code));
  });
  const HANDLE handle = CreateFileW(device.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  std::uint8_t report[] = {0xA4, 7};
  HidD_SetFeature(handle, report, sizeof(report));
  CloseHandle(handle);
  HKEY key = nullptr;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"A", 0, KEY_READ, &key);
  wchar_t wide[8] = L"";
  for (const wchar_t* const variable : {L"EMPTY", L"NONE"}) GetEnvironmentVariableW(variable, wide, 8);
  platform::SetJournal({});
  EXPECT_EQ(entries, (std::vector<std::string>{
                         R"(CreateFileW | \\?\hid#test#01 | 0)", R"(HidD_SetFeature | \\?\hid#test#01 | failed 121)",
                         R"(CloseHandle | \\?\hid#test#01 | 0)", "RegOpenKeyExW | A | failed 2",
                         "GetEnvironmentVariableW | EMPTY | 0", "GetEnvironmentVariableW | NONE | failed 203"}));
}

TEST_F(InstrumentsTest, WhatMachineOrJournalThrowsDoesNotReachTheCaller) {
  test::ScriptedHid& device = machine->Plug(test::VendorCollection(0xFF5A, {}, 1));
  const HANDLE handle = CreateFileW(device.device.path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  std::uint8_t report[] = {0xA4, 7};
  platform::SetJournal([](const platform::JournalEntry&) { throw std::runtime_error("full"); });
  EXPECT_TRUE(HidD_SetFeature(handle, report, sizeof(report)));
  platform::SetJournal({});
  device.fail = [](auto) -> LONG { throw std::runtime_error("gone"); };
  EXPECT_FALSE(HidD_SetFeature(handle, report, sizeof(report)));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
  device.fail = [](auto) -> LONG { throw std::bad_alloc(); };
  EXPECT_FALSE(HidD_SetFeature(handle, report, sizeof(report)));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
  CloseHandle(handle);
}

TEST_F(InstrumentsTest, MachineStaysWhileAnythingOfItIsAlive) {
  const auto other = std::make_shared<platform::Machine>();
  EXPECT_FALSE(platform::UseMachine(nullptr));
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  EXPECT_FALSE(platform::UseMachine(other));
  EXPECT_EQ(platform::CurrentMachine(), machine);
  CoUninitialize();
  EXPECT_TRUE(platform::UseMachine(other));
  EXPECT_EQ(platform::CurrentMachine(), other);
}

}  // namespace
