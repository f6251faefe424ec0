/// What shows on a real kernel alone: rights, time limits, the computer's own SMBIOS table.

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <regex>

#include "platform/linux/hidraw.h"
#include "tests/cases/case.h"

namespace test {
namespace {

using Clock = std::chrono::steady_clock;

class KernelCase : public Case {
 protected:
  /// What a command of a process of its own prints, as root or as somebody who is nobody.
  static std::string Run(const std::string& command, uid_t user = 0) {
    const TemporaryFolder folder;
    const std::string out = folder.path() / "out";
    const pid_t child = fork();
    if (child == 0) {
      if (std::freopen(out.c_str(), "w", stdout) == nullptr || setuid(user) != 0) _exit(126);
      execl("/bin/busybox", "sh", "-c", (command + " 2>&1").c_str(), nullptr);
      _exit(127);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return ContentOf(out) + "exit code " + std::to_string(WEXITSTATUS(status)) + "\n";
  }
  static std::string Zarnctl(const std::string& arguments, uid_t user = 0) {
    return Run(std::string(ZARNCTL_PATH) + " " + arguments, user);
  }
  /// The line about the node of the keyboard, whichever number it has.
  static std::string LineAboutTheNode(const std::string& text) {
    const std::string named = std::regex_replace(text, std::regex("hidraw[0-9]+"), "hidrawN");
    std::smatch line;
    std::regex_search(named, line, std::regex(".*/dev/hidrawN.*"));
    return line.str();
  }

  /// So many keyboards, which hang while this thread and the worker push to them, and in the teardown; the wire begins
  /// there.
  void PushAndTearDown(std::uint16_t keyboards) {
    simulator::Profile profile = HidProfile(1, 0);
    while (profile.hid_keyboards.size() < keyboards) {
      profile.hid_keyboards.push_back(profile.hid_keyboards.back());
      ++profile.hid_keyboards.back().product;  // or the first would get the reports of both
    }
    Start(profile);
    EXPECT_EQ(Discover().count, 1);
    Device device = Create("ZarnHIDKeyboard");
    Wire();
    for (std::size_t i = 0; i < keyboards; ++i)
      Keyboard(i).Misbehave({.kind = HidKeyboard::Misbehaviour::Kind::Stall, .stall_ms = 600'000});
    const Clock::time_point began = Clock::now();
    device->ChooseMode(0);
    device->WriteColorsToDevice();
    std::cout << "a push to hung keyboards: " << SecondsSince(began) << " s\n";
    device.reset();
    std::cout << "with the teardown: " << SecondsSince(began) << " s\n";
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
  EXPECT_EQ(LineAboutTheNode(Zarnctl("doctor")), "fine     /dev/hidrawN (1209:0001): a lighting keyboard, serves 21");
  EXPECT_EQ(LineAboutTheNode(Zarnctl("doctor", 65534)),
            "missing  /dev/hidrawN (1209:0001): a lighting device, which this user may not open; plug it in again once "
            "the package's udev rule is installed, or run as root");
  Keyboard().Misbehave({});
  EXPECT_EQ(LineAboutTheNode(Zarnctl("doctor")),
            "missing  /dev/hidrawN (1209:0001): a lighting device, which does not answer report A1 (error 31); plug it "
            "in again");
}

TEST_F(KernelCase, ALateAnswerIsAnAnswer) {
  Start(HidProfile(2, 0));
  Keyboard().Misbehave({.kind = HidKeyboard::Misbehaviour::Kind::Late, .stall_ms = 300});
  EXPECT_EQ(Discover().count, 1);
  const Device keyboard = Create("ZarnHIDKeyboard");
  Choose(keyboard, "STATIC", {.colors = {0xFF}});
  EXPECT_EQ(Keyboard().Lights().zones[1].color, (simulator::Color{255, 0, 0}));
}

TEST_F(KernelCase, EachHungKeyboardIsAskedOnceInAPushAndATeardown) {
  PushAndTearDown(1);
  ASSERT_EQ(Wire(), Lines{"SetFeature 0 a4 21 02 32 00 00 00 00 00 01"});
  PushAndTearDown(2);
  EXPECT_EQ(Wire(),
            (Lines{"SetFeature 0 a4 21 02 32 00 00 00 00 00 01", "SetFeature 1 a4 21 02 32 00 00 00 00 00 01"}));
}

TEST_F(KernelCase, AnAnswerOfNoBytesOrOfAnotherReportIsNone) {
  const auto expect_no_answer = [this](const HidKeyboard::Settings& settings) {
    simulator::Profile profile = HidProfile(4, 0);
    profile.hid_keyboards = {settings};
    Start(profile);
    EXPECT_EQ(Discover().count, 0);
    EXPECT_EQ(Log("TsHID::GetHIDFeature"), Lines{"Error getting feature from HID device"});
  };
  HidKeyboard::Settings settings = HidSettings(4, 0);
  settings.attribute_reply = {0xA3, 1, 0x21};
  expect_no_answer(settings);
  settings.descriptor = HidKeyboard(settings).report_descriptor();
  settings.report_length = 0;  // of what it answers, whatever its descriptor says
  expect_no_answer(settings);
}

TEST_F(KernelCase, UdevGivesKeyboardsWithLightingControlsAloneToTheUserAtTheMachine) {
  HidKeyboard::Settings combined = HidSettings(4, 0);
  combined.other_collection = true;
  HidKeyboard::Settings plain = combined;
  plain.usage_page = 0xFF00;
  simulator::Profile profile = HidProfile(4, 0);
  profile.hid_keyboards.insert(profile.hid_keyboards.end(), {combined, plain});
  Start(profile);
  std::vector<bool> given;
  for (const auto& device : platform::FindHidrawDevices({})) {
    const std::string said = Run("udevadm test /sys/class/hidraw/" + device.node.filename().string());
    given.push_back(said.find("\nTAGS=:uaccess:\n") != std::string::npos);
  }
  EXPECT_EQ(given, (std::vector{true, true, false}));
}

}  // namespace
}  // namespace test
