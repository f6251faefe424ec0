/// zarnctl as it is on Windows, over the notebook.

#include <iostream>
#include <sstream>

#include "log/service_switch.h"
#include "platform/registry.h"
#include "tests/cases/case.h"
#include "zarnctl/command_line.h"

namespace test {
namespace {

using zarnctl::ExitCode;

/// What one run said, stdout before stderr.
struct Said {
  ExitCode code = ExitCode::Failed;
  std::string text;
};

Said Zarnctl(std::vector<std::string> words) {
  std::ostringstream out;
  std::ostringstream errors;
  std::streambuf* const stdout_before = std::cout.rdbuf(out.rdbuf());
  std::streambuf* const stderr_before = std::cerr.rdbuf(errors.rdbuf());
  words.insert(words.begin(), {"--plugin", ZARN_LIGHTING_PATH});
  const ExitCode code = zarnctl::Run(std::move(words));
  std::cout.rdbuf(stdout_before);
  std::cerr.rdbuf(stderr_before);
  return {code, out.str() + errors.str()};
}

Said SetRed() { return Zarnctl({"set", "zarnhidkeyboard", "--mode", "static", "--color", "ff0000"}); }

using ZarnctlCase = Case;

TEST_F(ZarnctlCase, DrivesKeyboardsAndTellsWhatTheLogKnows) {
  Start("hybrid");
  EXPECT_EQ(Zarnctl({"devices"}).text,
            "ZarnECGlobal: Zarn Global Device, 1 zone, 1 LED, 9 modes\n"
            "ZarnECKeyboard: Zarn EC Keyboard Device, 1 zone, 4 LEDs, 9 modes\n"
            "ZarnHIDKeyboard: Zarn HID Keyboard Device, 1 zone, 16 LEDs, 14 modes\n"
            "interface type 3\n");
  Said said = Zarnctl({"leds", "ZarnECKeyboard", "00ff00"});
  EXPECT_EQ(said.code, ExitCode::Done);
  EXPECT_EQ(said.text,
            "ZarnECKeyboard: Direct, handed to the plug-in, which does not tell whether the firmware took it\n");
  EXPECT_EQ(notebook->Lights().zones.at(3).color, (simulator::Color{0, 255, 0}));

  said = SetRed();
  EXPECT_EQ(said.code, ExitCode::Done);
  EXPECT_EQ(said.text, "ZarnHIDKeyboard: STATIC\n");
  EXPECT_EQ(Keyboard().Lights().zones.at(1).color, (simulator::Color{255, 0, 0}));

  Keyboard().Misbehave({.kind = HidKeyboard::Misbehaviour::Kind::Fail, .first = 3});
  said = SetRed();
  EXPECT_EQ(said.code, ExitCode::Refused);
  EXPECT_EQ(said.text,
            "ZarnHIDKeyboard: STATIC\n"
            "zarnctl: Error setting feature on HID device: 31\n"
            "zarnctl: Error setting feature on HID device\n");
  Keyboard().Misbehave({.first = 0});

  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kLogSwitch.key, 0, KEY_WRITE, &key), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueW(key, kLogSwitch.value), ERROR_SUCCESS);
  RegCloseKey(key);
  said = SetRed();
  EXPECT_EQ(said.code, ExitCode::Done);
  EXPECT_EQ(said.text,
            "ZarnHIDKeyboard: STATIC, handed to the plug-in, whose log would tell what came of it, but is off: see "
            "'zarnctl config'\n");
}

}  // namespace
}  // namespace test
