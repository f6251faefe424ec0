#include "log/ts_log.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <thread>
#include <vector>

#include "log/info_log.h"
#include "log/logger.h"
#include "tests/support/machine_fixture.h"
#include "tests/support/temporary_folder.h"

namespace test {
namespace {

using zarn::WRV520::Logger;

/// Logging is on. A process keeps its log for ever, so each test that may create one runs in a process of its own.
class TsLogTest : public MachineTest {
 protected:
  TsLogTest() { SwitchLogOn(); }

  template <typename Body>
  void InOwnProcess(Body body) {
    EXPECT_EXIT(
        {
          body();
          std::exit(HasFailure() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
  }

  void SwitchLogOn() { machine->SwitchLogOn(folder.path().string()); }
  std::string Lines(const std::string& name = "user1_ZarnECKeyboard_20240131.log") const {
    return ContentOf(folder.path() / "OEM/ZarnLightingService/Log" / name);
  }
  bool FolderIsEmpty() const { return std::filesystem::is_empty(folder.path()); }

  const TemporaryFolder folder;
};

TEST_F(TsLogTest, LinesCarryLevelTimeModuleTagAndMessageAndComeByTheAdapterToo) {
  InOwnProcess([&] {
    TsLog* const log = TsLog::GetInstance();
    ASSERT_NE(log, nullptr);
    EXPECT_TRUE(log->WriteLine(TsLog::Info, L"CheckDeviceStatus", L"Enter!!"));
    machine->now = {2024, 2, 1, 5, 0, 0, 0, 5};  // the file keeps the day of its creation
    EXPECT_TRUE(log->WriteLine(TsLog::Warning, L"", L"") && log->WriteLine(TsLog::Error, L"A::B", L"x"));
    EXPECT_TRUE(log->WriteLine(TsLog::Exception, L"A::B", L"x") && log->WriteLine(9, L"A::B", L"x"));
    zarn::WRV520::TsLogAdapter adapter(log);
    adapter.Log(Logger::Error, L"A::B", L"first");
    adapter.Log(static_cast<Logger::Level>(9), L"A::B", L"second");
    zarn::WRV520::TsLogAdapter(nullptr).Log(Logger::Info, L"A::B", L"third");
    EXPECT_EQ(Lines(),
              "[INFO]      20240131_14:05:09.042 | ZarnECKeyboard | CheckDeviceStatus | Enter!!\r\n"
              "[WARNING]   20240205_00:00:00.005 | ZarnECKeyboard |  | \r\n"
              "[ERROR]     20240205_00:00:00.005 | ZarnECKeyboard | A::B | x\r\n"
              "[EXCEPTION] 20240205_00:00:00.005 | ZarnECKeyboard | A::B | x\r\n"
              " 20240205_00:00:00.005 | ZarnECKeyboard | A::B | x\r\n"
              "[ERROR]     20240205_00:00:00.005 | ZarnECKeyboard | A::B | first\r\n"
              "[INFO]      20240205_00:00:00.005 | ZarnECKeyboard | A::B | second\r\n");
  });
}

TEST_F(TsLogTest, SwitchIsReadAgainUntilTheLogIsThereAndNeverAfter) {
  InOwnProcess([&] {
    machine->registry.clear();
    EXPECT_EQ(TsLog::GetInstance(), nullptr);
    for (const Bytes& off : {Bytes{0, 0, 0, 0}, Bytes{'1', 0, 0, 0}}) {  // the second one a text
      machine->registry[kLogSwitch.key] = {{kLogSwitch.value, off}};
      EXPECT_EQ(TsLog::GetInstance(), nullptr);
    }
    EXPECT_TRUE(FolderIsEmpty());
    SwitchLogOn();
    TsLog* const log = TsLog::GetInstance();
    EXPECT_NE(log, nullptr);
    machine->registry.clear();
    EXPECT_EQ(TsLog::GetInstance(), log);
    EXPECT_TRUE(Lines().empty());  // only the folder is made before the first line
    EXPECT_FALSE(FolderIsEmpty());
  });
}

TEST_F(TsLogTest, FirstCallsFromManyThreadsCreateOneLogAndLinesStayWhole) {
  InOwnProcess([&] {
    std::vector<TsLog*> seen(4);
    {
      std::vector<std::jthread> threads;
      threads.reserve(seen.size());
      for (TsLog*& log : seen) {
        threads.emplace_back([&log] {
          log = TsLog::GetInstance();
          for (int i = 0; i < 25; ++i) log->WriteLine(TsLog::Info, L"Tag", std::wstring(300, L'm').c_str());
        });
      }
    }
    EXPECT_EQ(seen, std::vector<TsLog*>(4, seen[0]));
    std::string expected;
    for (int i = 0; i < 100; ++i) {
      expected += "[INFO]      20240131_14:05:09.042 | ZarnECKeyboard | Tag | " + std::string(300, 'm') + "\r\n";
    }
    EXPECT_EQ(Lines(), expected);
  });
}

TEST_F(TsLogTest, PathThatDoesNotFitLeavesLoggingOff) {
  InOwnProcess([&] {
    const std::string base = folder.path().string() + "/";
    // \OEM\ZarnLightingService\Log\ + user1_ZarnECKeyboard_20240131.log are 62 characters behind the folder.
    for (const std::size_t length : {260U - 62U, 259U, 260U, 300U}) {
      machine->environment[L"PROGRAMDATA"] =
          std::wstring(base.begin(), base.end()) + std::wstring(length - base.size(), L'd');
      EXPECT_EQ(TsLog::GetInstance(), nullptr) << length;
      EXPECT_TRUE(FolderIsEmpty());
    }
    machine->environment[L"PROGRAMDATA"].resize(259 - 62);
    EXPECT_NE(TsLog::GetInstance(), nullptr);
    EXPECT_FALSE(FolderIsEmpty());
  });
}

TEST_F(TsLogTest, LogWhoseFolderCannotBeMadeDropsItsLinesAndTriesAgain) {
  InOwnProcess([&] {
    machine->user.reset();  // which leaves its place empty
    std::ofstream(folder.path() / "OEM") << "a file in the way";
    TsLog* const log = TsLog::GetInstance();
    ASSERT_NE(log, nullptr);
    EXPECT_FALSE(log->WriteLine(TsLog::Info, L"T", L"lost"));
    std::filesystem::remove(folder.path() / "OEM");
    std::filesystem::create_directories(folder.path() / "OEM/ZarnLightingService/Log");
    EXPECT_TRUE(log->WriteLine(TsLog::Info, L"T", L"kept"));
    EXPECT_EQ(Lines("_ZarnECKeyboard_20240131.log"),
              "[INFO]      20240131_14:05:09.042 | ZarnECKeyboard | T | kept\r\n");
  });
}

TEST_F(TsLogTest, MessagesAreFormattedAndCutAtTheirBufferOrWhereTheyCannotBeConverted) {
  InOwnProcess([&] {
    const InfoLog log(L"T");
    log(L"before \x20AC after");
    log(L"%d 0x%02X %ls", -1, 10, L"text");
    log(L"%ls", std::wstring(2000, L'x').c_str());
    EXPECT_EQ(Lines(),
              "[INFO]      20240131_14:05:09.042 | ZarnECKeyboard | T | before \r\n"
              "[INFO]      20240131_14:05:09.042 | ZarnECKeyboard | T | -1 0x0A text\r\n"
              "[INFO]      20240131_14:05:09.042 | ZarnECKeyboard | T | " +
                  std::string(999, 'x') + "\r\n");
  });
}

TEST(Logger, DefaultPrintsMessagesUntilItIsReplacedAndUsersKeepTheirs) {
  std::wostringstream console;
  std::wstreambuf* const usual = std::wcout.rdbuf(console.rdbuf());
  const auto by_default = zarn::WRV520::CurrentLogger();
  std::wcout.setstate(std::ios_base::badbit);
  by_default->Log(Logger::Error, L"tag", L"lost");
  by_default->Log(Logger::Error, L"tag", L"message");
  zarn::WRV520::ReplaceLogger(std::make_shared<zarn::WRV520::TsLogAdapter>(nullptr));
  zarn::WRV520::CurrentLogger()->Log(Logger::Info, L"tag", L"dropped");
  std::wcout.rdbuf(usual);
  EXPECT_EQ(console.str(), L"\nmessage\n");  // of the lost message the line's end is left
  EXPECT_EQ(by_default.use_count(), 1);
  zarn::WRV520::ReplaceLogger(by_default);
}

}  // namespace
}  // namespace test
