/// What shows on a real kernel alone: rights, time limits, the computer's own SMBIOS table.

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <iostream>

#include "tests/cases/case.h"

namespace test {
namespace {

using Clock = std::chrono::steady_clock;

class KernelCase : public Case {
 protected:
  /// What zarnctl prints in a process of its own, as root or as somebody who is nobody.
  static std::string Zarnctl(const std::string& arguments, uid_t user = 0) {
    const TemporaryFolder folder;
    const std::string out = folder.path() / "out";
    const pid_t child = fork();
    if (child == 0) {
      if (std::freopen(out.c_str(), "w", stdout) == nullptr || setuid(user) != 0) _exit(126);
      execl("/bin/busybox", "sh", "-c", (std::string(ZARNCTL_PATH) + " " + arguments + " 2>&1").c_str(), nullptr);
      _exit(127);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return ContentOf(out) + "exit code " + std::to_string(WEXITSTATUS(status)) + "\n";
  }
  /// The line about the node of the keyboard, whichever number it has.
  static std::string LineAboutTheNode(const std::string& text) {
    const std::size_t begin = text.find("/dev/hidraw");
    const std::size_t line = text.rfind('\n', begin) + 1;
    return begin == std::string::npos
               ? ""
               : text.substr(line, begin - line) +
                     text.substr(text.find(' ', begin), text.find('\n', begin) - text.find(' ', begin));
  }

  static double SecondsSince(Clock::time_point began) {
    return std::chrono::duration<double>(Clock::now() - began).count();
  }
};

/// What the computer's table holds: version 2.91, four RGB zones, a light bar.
TEST_F(KernelCase, TheRecordComesFromTheComputersOwnTable) {
  Start("four-zone");
  EXPECT_EQ(Discover(), (Discovered{1, L"ZarnECKeyboard", 3, L"", L""}));
  EXPECT_EQ(Log("CheckDeviceStatus"),
            (Lines{"Enter!!", "Is EC Keyboard: 1", "Is RGB Keyboard: 1", "Is EC Lightbar: 1",
                   "BIOS major version:2 - BIOS minor version::91", "Number of Device:1, DeviceName:ZarnECKeyboard"}));
  EXPECT_EQ(Describe(Create("ZarnECKeyboard")).led_list.size(), 4U);
}

TEST_F(KernelCase, WithoutTheRightToOpenANodeThereIsNoKeyboard) {
  Start(HidProfile(4, 0));
  ASSERT_EQ(seteuid(65534), 0);
  EXPECT_EQ(Discover().count, 0);
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_EQ(Discover().count, 1);
  EXPECT_EQ(Wire(), Lines{"GetFeature 0 a1"});
}

TEST_F(KernelCase, ZarnctlDrivesTheKeyboardOfThisComputerAndSaysWhatHoldsItUp) {
  Start("hid-keyboard");
  EXPECT_EQ(Zarnctl("devices"),
            "ZarnHIDKeyboard: Zarn HID Keyboard Device, 1 zone, 4 LEDs, 14 modes\n"
            "interface type 1, hardware id USB\\VID_1209&PID_0001, usage page FF5A\nexit code 0\n");
  EXPECT_EQ(Zarnctl("set ZarnHIDKeyboard --mode static --color ff8000"), "ZarnHIDKeyboard: STATIC\nexit code 0\n");
  EXPECT_EQ(Keyboard().Lights().zones[3].color, (simulator::Color{0xFF, 0x80, 0}));
  EXPECT_EQ(LineAboutTheNode(Zarnctl("doctor")), "fine      (1209:0001): a lighting keyboard, serves 21");
  EXPECT_EQ(
      LineAboutTheNode(Zarnctl("doctor", 65534)),
      "missing   (1209:0001): a lighting device, which this user may not open; plug it in again once the package's "
      "udev rule is installed, or run as root");
  Keyboard().Misbehave({});
  EXPECT_EQ(LineAboutTheNode(Zarnctl("doctor")),
            "missing   (1209:0001): does not answer report A1 (error 31); plug it in again");
}

TEST_F(KernelCase, ALateAnswerIsAnAnswer) {
  Start(HidProfile(2, 0));
  Keyboard().Misbehave({.kind = HidKeyboard::Misbehaviour::Kind::Late, .stall_ms = 300});
  EXPECT_EQ(Discover().count, 1);
  const Device keyboard = Create("ZarnHIDKeyboard");
  Choose(keyboard, "STATIC", {.colors = {0xFF}});
  EXPECT_EQ(Keyboard().Lights().zones[1].color, (simulator::Color{255, 0, 0}));
}

TEST_F(KernelCase, AHungKeyboardHoldsAPushAndATeardownUpOnce) {
  Start(HidProfile(16, 0));
  EXPECT_EQ(Discover().count, 1);
  Device keyboard = Create("ZarnHIDKeyboard");
  Wire();
  Keyboard().Misbehave({.kind = HidKeyboard::Misbehaviour::Kind::Stall, .stall_ms = 600'000});
  const Clock::time_point began = Clock::now();
  keyboard->ChooseMode(0);
  Await([this] { return !notebook->TakeWire().empty(); });
  keyboard->RequestColorPush();
  keyboard->WriteColorsToDevice();
  std::cout << "a push to a hung keyboard: " << SecondsSince(began) << " s\n";
  keyboard.reset();
  std::cout << "with the teardown: " << SecondsSince(began) << " s\n";
  EXPECT_EQ(Wire(), Lines{});  // nothing but the one exchange that hung
}

}  // namespace
}  // namespace test
