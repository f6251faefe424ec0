/// What only a firmware outside of this process shows: the very bytes, odd answers, callers that meet, other users.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <span>
#include <thread>

#include "base/little_endian.h"
#include "platform/linux/linux_machine.h"
#include "platform/standin/instruments.h"
#include "platform/standin/wmi_api.h"
#include "tests/cases/case.h"
#include "tests/system/emulated_firmware.h"

namespace test {
namespace {

using std::chrono::steady_clock;

class FirmwareCase : public Case {
 protected:
  platform::FirmwareAnswer Call(const std::wstring& method, const platform::NamedValues& in = {}) {
    return computer_.CallFirmware(L"ACPI\\PNP0C14\\ZGF_0", method, in);
  }
  /// One output of a call that must succeed.
  platform::Value Output(const std::wstring& method, const platform::NamedValues& in = {},
                         const std::wstring& name = L"gmOutput") {
    const platform::FirmwareAnswer answer = Call(method, in);
    EXPECT_EQ(answer.status, S_OK);
    const auto output = answer.out.find(name);
    return output == answer.out.end() ? platform::Value() : output->second;
  }
  bool Echoes(const platform::Bytes& bytes) { return Output(L"Echo", {{L"gmInput", bytes}}) == platform::Value(bytes); }

  template <typename Action>
  static double SecondsOf(const Action& action) {
    const auto began = steady_clock::now();
    action();
    return std::chrono::duration<double>(steady_clock::now() - began).count();
  }

 private:
  platform::LinuxMachine computer_;
};

TEST_F(FirmwareCase, TheBytesArriveAsTheyStandInThePackets) {
  EmulatedFirmware firmware;
  Start("light-bar");
  EXPECT_EQ(Discover().names, L"ZarnECGlobal,ZarnECKeyboard");
  EXPECT_EQ(firmware.TakeInHex(), Lines{"4: 10 00 00 00"});
  const Device keyboard = Create("ZarnECKeyboard");
  keyboard->StoreLedColor(1, 0x0000FF);
  keyboard->StoreLedColor(3, 0x563412);
  keyboard->WriteColorsToDevice();
  Choose(keyboard, "BREATHING", {7, 30, 0, {0x332211}});
  Choose(Create("ZarnECGlobal"), "WAVE", {9, 100, 1, {}});
  EXPECT_EQ(firmware.TakeInHex(),
            (Lines{"2: 08 00 00 00 00 0a 00 00 00 00 00 00 00 00 00 00",
                   "20: 00 00 32 00 00 00 00 00 03 01 00 00 00 00 00 00", "6: 01 00 00 00 00 00 00 00",
                   "6: 02 ff 00 00 00 00 00 00", "6: 04 00 00 00 00 00 00 00", "6: 08 12 34 56 00 00 00 00",
                   "20: 01 07 1e 00 02 11 22 33 03 01 00 00 00 00 00 00",
                   "20: 03 09 64 00 01 00 00 00 03 03 00 00 00 00 00 00"}));
}

TEST_F(FirmwareCase, AnswersOfEveryKindArriveAndOddOnesDoNoHarm) {
  EXPECT_EQ(Output(L"AnswerPackage", {}, L"gmReturn"), platform::Value(std::int32_t{5}));
  EXPECT_EQ(Output(L"AnswerPackage"), platform::Value(platform::Bytes{1, 2, 3}));
  platform::Bytes shown(42);  // of 64
  for (std::size_t i = 0; i < shown.size(); ++i) shown[i] = static_cast<std::uint8_t>(i);
  EXPECT_EQ(Output(L"AnswerManyBytes"), platform::Value(shown));
  EXPECT_GE(SecondsOf([&] { EXPECT_EQ(Output(L"AnswerLate"), platform::Value(std::int32_t{33})); }), 0.2);
  EXPECT_EQ(Output(L"AnswerEmpty"), platform::Value());
  EXPECT_EQ(Output(L"AnswerNothing"), platform::Value(std::int32_t{0})) << "what the kernel worked out last";
  CallModule("\\_SB.WZRN.TRES 0x80000001");
  EXPECT_EQ(Output(L"SetGamingKBBacklight", {{L"gmInput", platform::Bytes(16)}}),
            platform::Value(static_cast<std::int32_t>(0x80000001)));
  // The firmware runs into an error, which the module tells as a text.
  EXPECT_EQ(Call(L"SetGamingLED", {{L"gmInput", platform::Bytes{8}}}).status, platform::Status(WBEM_E_FAILED));
  EXPECT_TRUE(Echoes({1, 2, 3, 4}));
}

/// Two devices of the plug-in, two callers of the machine and a program of somebody else's, all at once.
TEST_F(FirmwareCase, NobodyGetsTheAnswerOfAnother) {
  const char* const wanted = std::getenv("ZARN_SYSTEM_TEST_CALLS");
  const int calls = wanted == nullptr ? 100 : std::atoi(wanted);
  const int pushes = (calls + 5) / 6;  // of six calls each
  Start("light-bar");
  CallModule("\\_SB.WZRN.TRES 0x5a5a");
  const Device keyboard = Create("ZarnECKeyboard");
  const Device global = Create("ZarnECGlobal");
  Log();
  std::atomic<int> failed = 0;
  std::atomic<int> wrong = 0;
  platform::SetJournal([&](const platform::JournalEntry& entry) { failed += entry.failed ? 1 : 0; });
  {
    std::vector<std::jthread> callers;
    callers.emplace_back([&] {
      for (int i = 0; i < pushes; ++i) keyboard->WriteColorsToDevice();
    });
    callers.emplace_back([&] {
      global->ChooseMode(3);
      for (int i = 0; i < calls; ++i) global->WriteModeToDevice();
    });
    for (const std::uint8_t caller : platform::Bytes{1, 2}) {
      callers.emplace_back([&, caller] {
        platform::Bytes bytes = {caller, 0, 0, 0};
        for (int i = 0; i < calls; ++i) {
          ToLittleEndian(static_cast<std::uint64_t>(i), std::span(bytes).last(3));
          wrong += Echoes(bytes) ? 0 : 1;
        }
      });
    }
    callers.emplace_back([&] {
      for (int i = 0; i < calls; ++i) {
        const std::string digits = std::to_string(10 + i % 90);
        wrong += CallModule("\\_SB.WZRN.WMZG 0 34 b" + digits) == "{0x" + digits + "}" ? 0 : 1;
      }
    });
  }
  platform::SetJournal({});
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(failed, 0);
  const Lines logged = Log("ZarnECKeyboardController::SetKeyboardBrightness");
  EXPECT_EQ(std::ranges::count(logged, "WMI SetGamingKbbacklightFunction output : 0x5A5A"), pushes);
}

TEST_F(FirmwareCase, ALockThatAnotherKeepsForFiveSecondsFailsTheCall) {
  ASSERT_TRUE(Echoes({1, 2, 3, 4}));
  const int other = open("/proc/acpi/call", O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  const double waited = SecondsOf([&] {
    EXPECT_EQ(Call(L"Echo", {{L"gmInput", platform::Bytes(4)}}).status, platform::Status(WBEM_E_SERVER_TOO_BUSY));
  });
  EXPECT_TRUE(waited >= 5 && waited < 5.5) << waited;
  close(other);
  EXPECT_TRUE(Echoes({5, 6, 7, 8}));
}

TEST_F(FirmwareCase, WhoeverIsNotRootReachesNothing) {
  EXPECT_TRUE(Echoes({1, 2, 3, 4}));                        // the class is known from now on
  ASSERT_TRUE(setegid(65534) == 0 && seteuid(65534) == 0);  // the file is the group's, too
  EXPECT_EQ(Call(L"Echo", {{L"gmInput", platform::Bytes(4)}}).status, platform::Status(WBEM_E_ACCESS_DENIED));
  EXPECT_FALSE(platform::LinuxMachine().FindFirmwareClass().has_value());
  ASSERT_TRUE(seteuid(0) == 0 && setegid(0) == 0);
}

TEST_F(FirmwareCase, CallsInARowGetTheirOwnAnswersAndAreTimedBesideTheModuleItself) {
  constexpr int kCalls = 200;
  ASSERT_TRUE(Echoes({1, 2, 3, 4}));
  const double bare = SecondsOf([] {
    for (int i = 0; i < kCalls; ++i) CallModule("\\_SB.WZRN.WMZG 0 34 b01020304");
  });
  const double ours = SecondsOf([&] {
    for (int i = 0; i < kCalls; ++i) EXPECT_TRUE(Echoes({1, 2, 3, 4}));
  });
  std::cout << "a firmware call takes " << ours / kCalls * 1e6 << " us, " << ours / bare
            << " times as long as the module's file by itself\n";
}

}  // namespace
}  // namespace test
