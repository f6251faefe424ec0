#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "platform/registry.h"
#include "platform/system.h"
#include "tests/support/machine_fixture.h"

namespace {

namespace fs = std::filesystem;

class SystemTest : public test::MachineTest {
 protected:
  SystemTest() { fs::create_directories(folder); }
  SystemTest(const SystemTest&) = delete;
  SystemTest& operator=(const SystemTest&) = delete;
  ~SystemTest() override { fs::remove_all(folder); }

  const fs::path folder = fs::path(testing::TempDir()) / "zarn_system_test";
};

class RegistryTest : public test::MachineTest {
 protected:
  RegistryTest() {
    machine->log_switch = {{L"Short", {1}}, {L"Long", {1, 2, 3, 4, 5, 6, 7, 8}}};
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\OEM\\ZarnLightingService\\Log", 0, KEY_READ, &key), 0);
  }

  LONG Query(const wchar_t* name) {
    return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&data), &size);
  }

  HKEY key = nullptr;
  DWORD data = 0xFFFFFFFF;
  DWORD size = sizeof(data);
};

TEST_F(RegistryTest, ValuesAreCopiedWhenTheyFit) {
  EXPECT_EQ(Query(L"Short"), 0);
  EXPECT_EQ(data, 0xFFFFFF01U);
  EXPECT_EQ(size, 1U);
  data = 0xFFFFFFFF;
  size = sizeof(data);
  EXPECT_EQ(Query(L"Long"), ERROR_MORE_DATA);
  EXPECT_EQ(data, 0xFFFFFFFFU);
  EXPECT_EQ(size, 8U);
  EXPECT_EQ(Query(L"Missing"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegCloseKey(key), 0);
}

TEST_F(RegistryTest, ClosedKeysAreKnownAsSuch) {
  HKEY other = nullptr;
  EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Missing", 0, KEY_READ, &other), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegOpenKeyExW(key, L"Sub", 0, KEY_READ, &other), ERROR_INVALID_HANDLE);
  EXPECT_EQ(platform::CountLive().registry_keys, 1);
  EXPECT_EQ(RegCloseKey(key), 0);
  EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\OEM\\ZarnLightingService\\Log", 0, KEY_READ, &other), 0);
  EXPECT_NE(other, key);
  EXPECT_EQ(RegCloseKey(other), 0);
  EXPECT_EQ(Query(L"Short"), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(platform::TakeComplaints(), (std::vector<std::string>{"RegQueryValueExW of a key that is not open",
                                                                  "RegCloseKey of a key that is not open"}));
}

TEST_F(SystemTest, EnvironmentAnswersLengthOrTheSizeNeeded) {
  machine->environment = {{L"NAME", L"abc"}, {L"EMPTY", L""}};
  wchar_t buffer[4] = {};
  EXPECT_EQ(GetEnvironmentVariableW(L"NAME", buffer, 4), 3U);
  EXPECT_STREQ(buffer, L"abc");
  EXPECT_EQ(GetEnvironmentVariableW(L"NAME", buffer, 3), 4U);
  EXPECT_EQ(GetEnvironmentVariableW(L"NAME", nullptr, 0), 4U);
  EXPECT_EQ(GetEnvironmentVariableW(L"MISSING", buffer, 4), 0U);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
  EXPECT_EQ(GetEnvironmentVariableW(L"EMPTY", buffer, 4), 0U);
  EXPECT_EQ(GetLastError(), 0U);
}

TEST_F(SystemTest, UserNameCountsItsTerminator) {
  wchar_t buffer[6] = {};
  DWORD size = 5;
  EXPECT_EQ(GetUserNameW(buffer, &size), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(size, 6U);
  EXPECT_EQ(GetUserNameW(buffer, &size), TRUE);
  EXPECT_EQ(size, 6U);
  EXPECT_STREQ(buffer, L"user1");
  machine->user.reset();
  EXPECT_EQ(GetUserNameW(buffer, &size), FALSE);
}

TEST_F(SystemTest, WideTextBecomesUtf8) {
  char narrow[11] = {};
  const wchar_t text[] = L"a\u00E9\u20AC\U0001F600";
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr), 11);
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, 11, nullptr, nullptr), 11);
  EXPECT_STREQ(narrow, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, 2, narrow, 11, nullptr, nullptr), 3);
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, 10, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  for (const std::uint32_t code : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
    const auto character = static_cast<wchar_t>(code);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, &character, 1, narrow, 11, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
  }
}

TEST_F(SystemTest, FoldersAreMadeUpToTheLastSeparator) {
  const std::string path = folder.string() + "\\a/b\\c.log";
  EXPECT_EQ(MakeSureDirectoryPathExists(path.c_str()), TRUE);
  EXPECT_EQ(MakeSureDirectoryPathExists(path.c_str()), TRUE) << "what is there is fine";
  EXPECT_TRUE(fs::is_directory(folder / "a/b"));
  EXPECT_FALSE(fs::exists(folder / "a/b/c.log"));
  std::ofstream(folder / "file").put('x');
  EXPECT_EQ(MakeSureDirectoryPathExists((folder.string() + "\\file\\b\\c.log").c_str()), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

TEST_F(SystemTest, StreamsOpenByWidePathAndSetTheLastError) {
  const std::wstring path = folder.wstring() + L"\\\u00E9.log";
  std::wofstream stream;
  SetLastError(77);
  platform::OpenStream(stream, path.c_str(), std::ios_base::out | std::ios_base::app | std::ios_base::binary);
  EXPECT_TRUE(stream.is_open());
  EXPECT_EQ(GetLastError(), 0U) << "late reads must not find the old one";
  EXPECT_TRUE(fs::exists(folder / "\xC3\xA9.log"));
  std::wofstream missing;
  platform::OpenStream(missing, (folder.wstring() + L"\\none\\x.log").c_str(), std::ios_base::out);
  EXPECT_TRUE(missing.fail());
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  std::wofstream unspeakable;
  unspeakable.exceptions(std::ios_base::failbit);
  const wchar_t lone[] = {static_cast<wchar_t>(0xD800), 0};
  EXPECT_NO_THROW(platform::OpenStream(unspeakable, lone, std::ios_base::out));
  EXPECT_TRUE(unspeakable.fail());
}

TEST_F(SystemTest, LocalTimeIsTheMachinesAndAnEmptyMachineHasTheComputers) {
  SYSTEMTIME time = {};
  GetLocalTime(&time);
  EXPECT_EQ(time.wYear, 2024);
  EXPECT_EQ(time.wMilliseconds, 42);
  Sleep(30);
  EXPECT_EQ(machine->TakeSleeps(), std::vector<std::uint32_t>{30});
  // A zone of its own, without summer time.
  setenv("TZ", "ZRN-05:30", 1);
  tzset();
  const std::time_t before = std::time(nullptr);
  const SYSTEMTIME real = platform::EmptyMachine().LocalTime();
  std::tm fields = {};
  fields.tm_year = real.wYear - 1900;
  fields.tm_mon = real.wMonth - 1;
  fields.tm_mday = real.wDay;
  fields.tm_hour = real.wHour;
  fields.tm_min = real.wMinute;
  fields.tm_sec = real.wSecond;
  const std::time_t told = timegm(&fields) - std::time_t{330} * 60;
  EXPECT_GE(told, before);
  EXPECT_LE(told, std::time(nullptr));
  EXPECT_EQ(real.wDayOfWeek, fields.tm_wday);
  unsetenv("TZ");
  tzset();
}

}  // namespace
