/// The EC keyboard, from its description to the lights.

#include <limits>

#include "tests/cases/case.h"
#include "tests/support/hex.h"

namespace test {
namespace {

using Zone = simulator::KeyboardLights::Zone;

class EcKeyboardCase : public Case {
 protected:
  void SetUp() override { NEEDS(Need::Firmware); }

  void CreateKeyboard(simulator::Profile profile) {
    keyboard.reset();
    Start(std::move(profile));
    keyboard = Create("ZarnECKeyboard");
    Wire();
    Log();
  }
  void CreateKeyboard(const std::string& profile) { CreateKeyboard(ProfileOf(profile)); }

  Device keyboard;
};

/// The description of the four-zone keyboard behind its total_size; what stands between <1 and > is there from version
/// 1 on, between <3 and > from version 3 on.
std::string DescriptionText() {
  const std::string speed_and_brightness = "01 00 00 00 09 00 00 00 <3 00 00 00 00 64 00 00 00 > ";
  const std::string settings = "05 00 00 00 <3 32 00 00 00 > 00 00 00 00 ";
  const std::string no_colors = speed_and_brightness + "00 00 00 00 00 00 00 00 " + settings + "00 00 00 00 00 00 ";
  const std::string one_color =
      speed_and_brightness + "01 00 00 00 01 00 00 00 " + settings + "02 00 00 00 01 00 00 00 00 00 ";
  const std::string led = "1a 00 4b 65 79 62 6f 61 72 64 20 42 61 63 6b 6c 69 67 68 74 20 7a 6f 6e 65 20 ";
  return "05 00 00 00 18 00 5a 61 72 6e 20 45 43 20 4b 65 79 62 6f 61 72 64 20 44 65 76 69 63 65 00 "
         "<1 05 00 5a 61 72 6e 00 > 18 00 5a 61 72 6e 20 45 43 20 4b 65 79 62 6f 61 72 64 20 44 65 76 69 63 65 00 "
         "01 00 00 01 00 00 01 00 00 09 00 00 00 00 00 "
         "07 00 44 69 72 65 63 74 00 ff 00 00 00 30 00 00 00 00 00 00 00 00 00 00 00 <3 00 00 00 00 64 00 00 00 > "
         "00 00 00 00 00 00 00 00 00 00 00 00 <3 32 00 00 00 > 00 00 00 00 01 00 00 00 00 00 "
         "07 00 53 54 41 54 49 43 00 00 00 00 00 51 00 00 00 " +
         one_color + "0a 00 42 52 45 41 54 48 49 4e 47 00 01 00 00 00 51 00 00 00 " + one_color +
         "05 00 4e 45 4f 4e 00 02 00 00 00 11 00 00 00 " + no_colors + "05 00 57 41 56 45 00 03 00 00 00 1f 00 00 00 " +
         no_colors + "09 00 53 48 49 46 54 49 4e 47 00 04 00 00 00 53 00 00 00 " + one_color +
         "05 00 5a 4f 4f 4d 00 05 00 00 00 51 00 00 00 " + one_color +
         "07 00 4d 45 54 45 4f 52 00 06 00 00 00 51 00 00 00 " + one_color +
         "0a 00 54 57 49 4e 4b 4c 49 4e 47 00 07 00 00 00 51 00 00 00 " + one_color +
         "01 00 18 00 4b 65 79 62 6f 61 72 64 20 42 61 63 6b 6c 69 67 68 74 20 7a 6f 6e 65 00 "
         "01 00 00 00 04 00 00 00 04 00 00 00 04 00 00 00 00 00 04 00 " +
         led + "31 00 00 00 00 00 " + led + "32 00 00 00 00 00 " + led + "33 00 00 00 00 00 " + led +
         "34 00 00 00 00 00 04 00 ff 00 00 00 00 ff 00 00 00 00 ff 00 ff ff ff 00 ";
}

std::vector<std::uint8_t> DescriptionAt(std::uint32_t version, const std::string& total_size) {
  std::string text = DescriptionText();
  for (std::size_t open = text.find('<'); open != std::string::npos; open = text.find('<')) {
    const std::size_t close = text.find('>', open);
    const bool there = version >= static_cast<std::uint32_t>(text[open + 1] - '0');
    text.replace(open, close - open + 1, there ? text.substr(open + 2, close - open - 2) : "");
  }
  return Hex(total_size + " " + text);
}

TEST_F(EcKeyboardCase, DescriptionHasItsBytesAtEveryVersion) {
  CreateKeyboard("four-zone");
  keyboard->StoreLedColor(0, 0x0000FF);
  keyboard->StoreLedColor(1, 0x00FF00);
  keyboard->StoreLedColor(2, 0xFF0000);
  keyboard->StoreLedColor(3, 0xFFFFFF);
  EXPECT_EQ(Take(keyboard->PackDescription(0)), DescriptionAt(0, "ce 02 00 00"));
  EXPECT_EQ(Take(keyboard->PackDescription(1)), DescriptionAt(1, "d5 02 00 00"));
  EXPECT_EQ(Take(keyboard->PackDescription(3)), DescriptionAt(3, "41 03 00 00"));
  EXPECT_EQ(Wire(), Lines{});
}

TEST_F(EcKeyboardCase, ColourPathSwitchesZonesThenSetsBrightnessThenColours) {
  CreateKeyboard("four-zone");
  keyboard->StoreLedColor(1, 0x0000FF);
  keyboard->StoreLedColor(3, 0x563412);
  keyboard->WriteColorsToDevice();
  EXPECT_EQ(Wire(), (Lines{"SetGamingLED 08 00 00 00 00 0a", "SetGamingKBBacklight 00 00 32 00 00 00 00 00 03 01",
                           "SetGamingRgbKb 1", "SetGamingRgbKb 65282",          // 0x0000FF02
                           "SetGamingRgbKb 4", "SetGamingRgbKb 1446253064"}));  // 0x56341208
  EXPECT_EQ(
      notebook->Lights(),
      (simulator::KeyboardLights{{{false, {}}, {true, {255, 0, 0}}, {false, {}}, {true, {0x12, 0x34, 0x56}}}, 50, {}}));
}

TEST_F(EcKeyboardCase, ZoneSwitchPacketHasTheLengthThatTheFirmwareTakes) {
  const Lines expected = {"SetGamingLED 08", "SetGamingKBBacklight 00 00 32 00 00 00 00 00 03 01", "SetGamingRgbKb 1"};
  for (const simulator::FirmwareVersion version :
       {simulator::FirmwareVersion{1, 99}, {2, 85}, {2, 86}, {2, 90}, {2, 91}, {3, 0}}) {
    simulator::Profile profile = ProfileOf("one-zone");
    profile.ec.version = version;
    CreateKeyboard(profile);
    keyboard->WriteLedToDevice(0);
    EXPECT_EQ(Wire(), expected) << int{version.major} << '.' << int{version.minor};
  }
  // Without its record the firmware counts as the oldest, and has no zones.
  simulator::Profile profile = ProfileOf("one-zone");
  profile.ec.version = {1, 99};
  profile.firmware_record = false;
  CreateKeyboard(profile);
  keyboard->WriteZoneToDevice(0);
  EXPECT_EQ(Wire(), Lines(expected.begin(), expected.end() - 1));
}

TEST_F(EcKeyboardCase, EffectsGoOutAsOnePacketWithTheirSettings) {
  CreateKeyboard("four-zone");
  const std::tuple<const char*, Setting, const char*> cases[] = {
      {"BREATHING", {7, 30, 0, {0x0000FF}}, "01 07 1e 00 02 ff 00 00 03 01"},
      {"NEON", {5, 50, 0, {0xFFFFFF}}, "02 05 32 00 02 00 00 00 03 01"},
      {"WAVE", {5, 50, 1, {0}}, "03 05 32 00 01 00 00 00 03 01"},
      {"WAVE", {5, 50, 2, {0}}, "03 05 32 00 03 00 00 00 03 01"},
      {"SHIFTING", {0x105, 0x132, 0x1FFFF, {0x332211}}, "04 05 32 00 00 11 22 33 03 01"},
      {"TWINKLING", {9, 100, 0x10000, {0x00FF00}}, "07 09 64 00 02 00 ff 00 03 01"}};
  for (const auto& [label, setting, packet] : cases) {
    Choose(keyboard, label, setting);
    EXPECT_EQ(Wire(), Lines{std::string("SetGamingKBBacklight ") + packet});
  }
  Log();
  Choose(keyboard, "BREATHING", {261, 30, 0xFFFE, {0}});
  EXPECT_EQ(Log("ZarnECKeyboardController::SetMode")[1],
            "mode=1, speed=261, direction=65535, brightness=30, color= (0X0,0X0,0X0)");
}

TEST_F(EcKeyboardCase, StaticTakesTheColourPathAndStaysInTheRecords) {
  CreateKeyboard("four-zone");
  Choose(keyboard, "STATIC", {5, 80, 0, {0x00FF00}});
  const Lines wire = Wire();
  EXPECT_EQ(wire, (Lines{"SetGamingLED 08 00 00 00 00 0f", "SetGamingKBBacklight 00 00 50 00 00 00 00 00 03 01",
                         "SetGamingRgbKb 16711681", "SetGamingRgbKb 16711682", "SetGamingRgbKb 16711684",
                         "SetGamingRgbKb 16711688"}));
  const ControllerRecords records = Describe(keyboard);
  EXPECT_EQ(records.color_table, std::vector<PackedColor>(4, 0x00FF00));
  EXPECT_EQ(records.mode_list[0].brightness_setting, 80U);

  keyboard->SelectFirstMode();
  EXPECT_EQ(keyboard->CurrentModeIndex(), 0);
  EXPECT_EQ(Wire(), Lines{});
  keyboard->WriteModeToDevice();  // "Direct" sends the same again
  EXPECT_EQ(Wire(), wire);
  Choose(keyboard, "BREATHING");
  Wire();
  keyboard->WriteColorsToDevice();  // whatever the mode
  EXPECT_EQ(Wire(), wire);
}

TEST_F(EcKeyboardCase, ModeWithoutItsColourIsBlackAndIndexesOutsideTheListSendNothing) {
  CreateKeyboard("one-zone");
  keyboard->StoreLedColor(0, 5);
  ControllerRecords records = Describe(keyboard);
  for (const std::int32_t index : {2, 1}) {
    records.mode_list[static_cast<std::size_t>(index)].mode_colors.clear();
    keyboard->UnpackModePacket(PackModePacket(records, index, 3).bytes.get(), 3);
    keyboard->WriteModeToDevice();
  }
  EXPECT_EQ(Wire(), (Lines{"SetGamingKBBacklight 01 05 32 00 02 00 00 00 03 01", "SetGamingLED 08",
                           "SetGamingKBBacklight 00 00 32 00 00 00 00 00 03 01", "SetGamingRgbKb 1"}));
  EXPECT_EQ(keyboard->FetchLedColor(0), 0U);
  for (const std::int32_t index : {-1, 9, std::numeric_limits<std::int32_t>::max()}) {
    keyboard->ChooseMode(index);
    keyboard->WriteModeToDevice();
  }
  keyboard.reset();
  EXPECT_EQ(Wire(), Lines{});
}

}  // namespace
}  // namespace test
