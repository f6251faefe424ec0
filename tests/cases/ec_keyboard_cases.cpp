/// The EC keyboard, from its description to the lights.

#include <limits>

#include "tests/cases/case.h"

namespace test {
namespace {

using Zone = simulator::KeyboardLights::Zone;

class EcKeyboardCase : public Case {
 protected:
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

TEST_F(EcKeyboardCase, DescribesItsZonesAndModes) {
  CreateKeyboard("four-zone");
  const ControllerRecords records = Describe(keyboard);
  EXPECT_EQ(Names(records), (Lines{"Zarn EC Keyboard Device", "Zarn", "Zarn EC Keyboard Device"}));
  EXPECT_EQ(records.hw_kind, 5);
  EXPECT_EQ(ModesInNumbers(keyboard),
            (Lines{"Direct 255 48 0 0 0 100 0 0 0 50 0 1", "STATIC 0 81 1 9 0 100 1 1 5 50 0 2 #0",
                   "BREATHING 1 81 1 9 0 100 1 1 5 50 0 2 #0", "NEON 2 17 1 9 0 100 0 0 5 50 0 0",
                   "WAVE 3 31 1 9 0 100 0 0 5 50 0 0", "SHIFTING 4 83 1 9 0 100 1 1 5 50 0 2 #0",
                   "ZOOM 5 81 1 9 0 100 1 1 5 50 0 2 #0", "METEOR 6 81 1 9 0 100 1 1 5 50 0 2 #0",
                   "TWINKLING 7 81 1 9 0 100 1 1 5 50 0 2 #0"}));
  ASSERT_EQ(records.zone_list.size(), 1U);
  const ZoneRecord& zone = records.zone_list[0];
  EXPECT_TRUE(zone.label == "Keyboard Backlight zone" && zone.zone_kind == 1 && zone.grid == nullptr);
  EXPECT_TRUE(zone.led_total == 4 && zone.led_total_min == 4 && zone.led_total_max == 4);
  ASSERT_EQ(records.led_list.size(), 4U);
  EXPECT_TRUE(records.led_list[3].label == "Keyboard Backlight zone 4" && records.led_list[3].hw_code == 0);
  EXPECT_EQ(records.color_table, std::vector<PackedColor>(4));
  const std::pair<std::uint32_t, std::size_t> sizes[] = {{0, 0x2CE}, {1, 0x2D5}, {2, 0x2D5}, {3, 0x341}};
  for (const auto& [version, size] : sizes) EXPECT_EQ(Take(keyboard->PackDescription(version)).size(), size);
}

TEST_F(EcKeyboardCase, ColourPathSwitchesZonesThenSetsBrightnessThenColours) {
  CreateKeyboard("four-zone");
  keyboard->StoreLedColor(1, 0x0000FF);
  keyboard->StoreLedColor(3, 0x563412);
  keyboard->WriteColorsToDevice();
  EXPECT_EQ(Wire(), (Lines{"SetGamingLED 08 00 00 00 00 0a", "SetGamingKBBacklight 00 00 32 00 00 00 00 00 03 01",
                           "SetGamingRgbKb 1", "SetGamingRgbKb 65282",          // 0x0000FF02
                           "SetGamingRgbKb 4", "SetGamingRgbKb 1446253064"}));  // 0x56341208
  EXPECT_EQ(EcLights(), (simulator::KeyboardLights{
                            {{false, {}}, {true, {255, 0, 0}}, {false, {}}, {true, {0x12, 0x34, 0x56}}}, 50, {}}));
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
