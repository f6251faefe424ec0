#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "platform/registry.h"
#include "platform/standin/text.h"
#include "platform/system.h"
#include "tests/support/machine_fixture.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

class SystemTest : public test::MachineTest {
 protected:
  /// Whether an "x" could be appended to the file.
  static bool Append(const fs::path& file) {
    std::wofstream stream;
    platform::OpenToAppend(stream, platform::WideFromUtf8(file.string()).c_str());
    return stream.is_open() && stream << L"x";
  }
  void ExpectLastError(LONG error) { EXPECT_EQ(GetLastError(), static_cast<DWORD>(error)); }

  const test::TemporaryFolder temporary;
  const fs::path& folder = temporary.path();
};

TEST_F(SystemTest, RegistryValuesAreCopiedWhenTheyFitAndTheKeyIsOpen) {
  machine->registry[L"SOFTWARE\\OEM"] = {{L"Short", {1}}, {L"Long", {1, 2, 3, 4, 5, 6, 7, 8}}};
  HKEY key = nullptr;
  DWORD data = 0xFFFFFFFF;
  DWORD size = sizeof(data);
  const auto open = [&key](const wchar_t* path) { return RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &key); };
  const auto query = [&](const wchar_t* name) {
    return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&data), &size);
  };
  EXPECT_EQ(open(L"SOFTWARE\\Missing"), ERROR_FILE_NOT_FOUND);
  ASSERT_EQ(open(L"SOFTWARE\\OEM"), 0);
  EXPECT_EQ(query(L"Long"), ERROR_MORE_DATA);
  EXPECT_EQ(data, 0xFFFFFFFFU);
  EXPECT_EQ(size, 8U);
  EXPECT_EQ(query(L"Short"), 0);
  EXPECT_EQ(data, 0xFFFFFF01U);
  EXPECT_EQ(size, 1U);
  EXPECT_EQ(RegCloseKey(key), 0);
  EXPECT_EQ(query(L"Short"), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(platform::TakeComplaints(), (std::vector<std::string>{"RegQueryValueExW of a key that is not open",
                                                                  "RegCloseKey of a key that is not open"}));
}

TEST_F(SystemTest, TextsAnswerTheirLengthOrTheSizeNeeded) {
  machine->environment = {{L"NAME", L"abc"}, {L"EMPTY", L""}};
  wchar_t buffer[4] = {};
  EXPECT_EQ(GetEnvironmentVariableW(L"NAME", buffer, 4), 3U);
  EXPECT_STREQ(buffer, L"abc");
  EXPECT_EQ(GetEnvironmentVariableW(L"NAME", buffer, 3), 4U);
  EXPECT_EQ(GetEnvironmentVariableW(L"NAME", nullptr, 0), 4U);
  EXPECT_EQ(GetEnvironmentVariableW(L"MISSING", buffer, 4), 0U);
  ExpectLastError(ERROR_ENVVAR_NOT_FOUND);
  EXPECT_EQ(GetEnvironmentVariableW(L"EMPTY", buffer, 4), 0U);
  ExpectLastError(ERROR_SUCCESS);

  wchar_t user[6] = {};
  DWORD size = 5;
  EXPECT_EQ(GetUserNameW(user, &size), FALSE);
  ExpectLastError(ERROR_INSUFFICIENT_BUFFER);
  EXPECT_EQ(GetUserNameW(user, &size), TRUE);
  EXPECT_EQ(size, 6U);
  EXPECT_STREQ(user, L"user1");
}

TEST_F(SystemTest, WideTextBecomesUtf8) {
  char narrow[11] = {};
  const auto convert = [&narrow](const wchar_t* text, int length, int size) {
    return WideCharToMultiByte(CP_ACP, 0, text, length, narrow, size, nullptr, nullptr);
  };
  const wchar_t text[] = L"a\u00E9\u20AC\U0001F600";
  EXPECT_EQ(convert(text, -1, 0), 11);
  EXPECT_EQ(convert(text, -1, 11), 11);
  EXPECT_STREQ(narrow, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(convert(text, 2, 11), 3);
  EXPECT_EQ(convert(text, -1, 10), 0);
  ExpectLastError(ERROR_INSUFFICIENT_BUFFER);
  for (const auto character : {wchar_t{0xD800}, wchar_t{0xDFFF}, wchar_t{0x110000}}) {
    EXPECT_EQ(convert(&character, 1, 11), 0);
    ExpectLastError(ERROR_NO_UNICODE_TRANSLATION);
  }
}

TEST_F(SystemTest, LogFilesOpenByWidePathAndAreTheUsersOwnWhateverTheUmask) {
  for (const mode_t mask : {mode_t{0}, mode_t{0777}}) {
    const fs::path place = folder / std::to_string(mask);
    const mode_t before = umask(mask);
    EXPECT_TRUE(MakeSureDirectoryPathExists((place / "a/b/").c_str()));
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(Append(place / "a/b/\xC3\xA9"));
    umask(before);
    ExpectLastError(ERROR_SUCCESS);
    EXPECT_EQ(test::ContentOf(place / "a/b/\xC3\xA9"), "xx");
    EXPECT_EQ(fs::status(place).permissions(), fs::perms{0700});
    EXPECT_EQ(fs::status(place / "a/b").permissions(), fs::perms{0700});
    EXPECT_EQ(fs::status(place / "a/b/\xC3\xA9").permissions(), fs::perms{0600});
  }
  EXPECT_FALSE(Append(folder / "none/x.log"));
  ExpectLastError(ERROR_FILE_NOT_FOUND);
  std::wofstream missing;
  const wchar_t lone[] = {static_cast<wchar_t>(0xD800), 0};
  EXPECT_NO_THROW(platform::OpenToAppend(missing, lone));
  EXPECT_TRUE(missing.fail());
}

TEST_F(SystemTest, LogFilesThatOthersCouldHavePlacedOrAtTheRootAreRefused) {
  EXPECT_FALSE(MakeSureDirectoryPathExists("\\zarn test\\Log\\"));
  EXPECT_FALSE(Append("/zarn test.log"));
  ExpectLastError(ERROR_ACCESS_DENIED);
  EXPECT_FALSE(fs::exists("/zarn test") || fs::exists("/zarn test.log"));
  const auto expect_refusal = [this](const fs::path& file) {
    EXPECT_FALSE(Append(file)) << file;
    EXPECT_EQ(test::ContentOf(folder / "mine"), "") << file;
  };
  std::ofstream(folder / "mine").close();
  std::ofstream(folder / "target").close();
  fs::create_symlink("target", folder / "link");
  fs::create_hard_link(folder / "mine", folder / "second name");
  ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
  const int reader = open((folder / "fifo").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  for (const char* const name : {"link", "mine", "fifo"}) expect_refusal(folder / name);
  close(reader);
  fs::create_directory(folder / "real");
  fs::create_symlink("../real", folder / "real/way");
  EXPECT_TRUE(Append(folder / "real/way/x")) << "this user's own link";
  fs::permissions(folder / "real", fs::perms{0777});
  expect_refusal(folder / "real/y");
  EXPECT_FALSE(MakeSureDirectoryPathExists((folder / "real/z/").c_str()));
  fs::permissions(folder / "real", fs::perms{01777});
  expect_refusal(folder / "real/y");
  EXPECT_TRUE(MakeSureDirectoryPathExists((folder / "real/own/").c_str()) && Append(folder / "real/own/y"))
      << "below a sticky folder";
  std::ofstream(folder / "loose").close();
  fs::permissions(folder / "loose", fs::perms{0666});
  EXPECT_TRUE(Append(folder / "loose"));
  EXPECT_EQ(fs::status(folder / "loose").permissions(), fs::perms{0600});
  if (geteuid() != 0) return;
  std::ofstream(folder / "other").close();
  fs::create_symlink("real", folder / "others_way");
  fs::create_directory(folder / "others");
  for (const char* const name : {"other", "others_way", "others"})
    ASSERT_EQ(lchown((folder / name).c_str(), 65534, 65534), 0);
  fs::create_directory(folder / "groups");
  fs::permissions(folder / "groups", fs::perms{0775});
  ASSERT_EQ(chown((folder / "groups").c_str(), 0, 65534), 0);
  expect_refusal(folder / "groups/n");
  for (const char* const name : {"other", "others_way/n", "others/n"}) expect_refusal(folder / name);
}

TEST_F(SystemTest, AMachineByItselfHasTheComputersLocalTime) {
  namespace chrono = std::chrono;
  setenv("TZ", "ZRN-05:30", 1);
  tzset();
  const auto before = chrono::floor<chrono::seconds>(chrono::system_clock::now());
  const SYSTEMTIME time = platform::Machine().LocalTime();
  unsetenv("TZ");
  tzset();
  const chrono::sys_days today(chrono::year(time.wYear) / time.wMonth / time.wDay);
  const auto told =
      today + chrono::hours(time.wHour) + chrono::minutes(time.wMinute - 330) + chrono::seconds(time.wSecond);
  EXPECT_TRUE(before <= told && told <= chrono::system_clock::now()) << told.time_since_epoch().count();
  EXPECT_EQ(time.wDayOfWeek, chrono::weekday(today).c_encoding());
}

}  // namespace
