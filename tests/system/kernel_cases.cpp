/// What shows on a real kernel alone: rights, time limits, the computer's own SMBIOS table.

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <iostream>

#include "tests/cases/case.h"

namespace test {
namespace {

using Clock = std::chrono::steady_clock;

class KernelCase : public Case {
 protected:
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
