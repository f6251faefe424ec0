/// The HID keyboard, from discovery to the lights.

#include "tests/cases/case.h"

namespace test {
namespace {

using HidZone = simulator::HidLights::Zone;
using Kind = HidKeyboard::Misbehaviour::Kind;

class HidKeyboardCase : public Case {
 protected:
  /// Starts, discovers and creates. Wire and log are empty then.
  void CreateKeyboard(simulator::Profile profile) {
    keyboard.reset();
    Start(std::move(profile));
    EXPECT_EQ(Discover().count, 1);
    keyboard = Create("ZarnHIDKeyboard");
    Wire();
    Log();
  }
  void CreateKeyboard(std::uint16_t zones, std::uint32_t effects) { CreateKeyboard(HidProfile(zones, effects)); }

  Device keyboard;
};

TEST_F(HidKeyboardCase, DescribesItselfByWhatTheKeyboardSupports) {
  CreateKeyboard(4, 0x7FF8);
  const ControllerRecords records = Describe(keyboard);
  EXPECT_EQ(Names(records), (Lines{"Zarn HID Keyboard Device", "zarn", "zarn HID Keyboard Device"}));
  EXPECT_EQ(records.hw_kind, 5);
  EXPECT_EQ(records.current_mode, 0);
  EXPECT_EQ(ModesInNumbers(keyboard),
            (Lines{"Direct 255 48 0 0 0 100 0 0 0 50 0 1", "STATIC 0 80 0 0 0 100 1 1 0 50 0 2 #0",
                   "BREATHING 1 81 1 9 0 100 1 1 5 50 0 2 #0", "NEON 2 17 1 9 0 100 1 1 5 50 0 0 #0",
                   "OPMODE 34 64 0 0 0 0 1 1 0 0 0 2 #0", "WAVE 3 19 1 9 0 100 1 1 5 50 0 0 #0",
                   "SHIFTING 4 83 1 9 0 100 1 1 5 50 0 2 #0", "ZOOM 5 81 1 9 0 100 1 1 5 50 0 2 #0",
                   "METEOR 6 81 1 9 0 100 1 1 5 50 0 2 #0", "TWINKLING 7 81 1 9 0 100 1 1 5 50 0 2 #0",
                   "RIPPLE 8 17 1 9 0 100 0 0 5 50 0 0", "SNAKE 9 17 1 9 0 100 0 0 5 50 0 0",
                   "DISCO 10 17 1 9 0 100 0 0 5 50 0 0", "COMBO 11 17 1 9 0 100 0 0 5 50 0 0"}));
  ASSERT_EQ(records.zone_list.size(), 1U);
  const ZoneRecord& zone = records.zone_list[0];
  EXPECT_EQ(zone.label, "Keyboard Backlight zone");
  EXPECT_EQ(zone.zone_kind, 1);
  EXPECT_TRUE(zone.led_total == 4 && zone.led_total_min == 4 && zone.led_total_max == 4 && zone.grid == nullptr);
  ASSERT_EQ(records.led_list.size(), 4U);
  EXPECT_EQ(records.led_list[3].label, "Keyboard Backlight zone 4");
  EXPECT_EQ(records.color_table, std::vector<PackedColor>(4));

  CreateKeyboard(4, 0xFFFF8007);
  EXPECT_EQ(ModesOf(keyboard), (Lines{"Direct", "STATIC"}));
  CreateKeyboard(4, 0x0800);
  EXPECT_EQ(ModesOf(keyboard), (Lines{"Direct", "STATIC", "COMBO"}));
}

TEST_F(HidKeyboardCase, EveryModeReachesTheKeyboardUnderItsOwnCode) {
  CreateKeyboard(4, 0x7FF8);
  Choose(keyboard, "STATIC", {.speed = 0, .colors = {0xFF}});
  EXPECT_EQ(Wire(), Lines{"SetFeature 0 a4 21 02 32 00 02 ff 00 00 0f"});
  EXPECT_EQ(Keyboard().Lights().zones, std::vector<HidZone>(4, {2, 50, 0, 2, {255, 0, 0}}));
  EXPECT_EQ(Log(), (Lines{"I ZarnHIDKeyboardController::SetMode | mode=2, speed=0, direction=2, brightness=50, "
                          "color=(0xFF,0x00,0x00) zone=0F",
                          "I Lighting::LightingHID::SetLightingDeviceUpdateReport | 21,02,32,00,02,FF,00,00,0F,00"}));

  Choose(keyboard, "BREATHING", {.speed = 0x0109, .brightness = 100, .direction = 1, .colors = {0x00336699}});
  EXPECT_EQ(Wire(), Lines{"SetFeature 0 a4 21 04 64 09 01 99 66 33 0f"});
  const std::pair<const char*, const char*> codes[] = {
      {"NEON", "05 32 05 02 00 00 00"},      {"OPMODE", "06 32 05 02 01 00 00"}, {"WAVE", "07 32 05 02 00 00 00"},
      {"SHIFTING", "08 32 05 02 01 00 00"},  {"ZOOM", "09 32 05 02 01 00 00"},   {"METEOR", "0a 32 05 02 01 00 00"},
      {"TWINKLING", "0b 32 05 02 01 00 00"}, {"COMBO", "0c 32 05 02 00 00 00"},  {"RIPPLE", "0d 32 05 02 00 00 00"},
      {"SNAKE", "0e 32 05 02 00 00 00"},     {"DISCO", "0f 32 05 02 00 00 00"}};
  for (const auto& [label, packet] : codes) {
    Choose(keyboard, label, {.colors = {1}});
    EXPECT_EQ(Wire(), Lines{std::string("SetFeature 0 a4 21 ") + packet + " 0f"}) << label;
  }
  const std::pair<std::uint32_t, const char*> directions[] = {{0, "02"}, {1, "01"}, {2, "03"},       {3, "04"},
                                                              {4, "05"}, {5, "06"}, {0x10006, "06"}, {7, "07"}};
  for (const auto& [direction, code] : directions) {
    Choose(keyboard, "WAVE", {.direction = direction});
    EXPECT_EQ(Wire(), Lines{std::string("SetFeature 0 a4 21 07 32 05 ") + code + " 00 00 00 0f"}) << direction;
  }
}

TEST_F(HidKeyboardCase, UnknownModesAndMissingColoursGoOutAsTheyAre) {
  CreateKeyboard(4, 0xFFFFFFFF);
  ControllerRecords records = Describe(keyboard);
  const std::pair<std::int32_t, Lines> codes[] = {
      {12, {"SetFeature 0 a4 21 0c 32 00 02 00 00 00 0f"}},
      {15, {"SetFeature 0 a4 21 01 32 00 02 00 00 00 0f"}},
      {0x122, Lines(5, "SetFeature 0 a4 21 22 32 00 02 00 00 00 0f: there is no effect 34")}};
  for (const auto& [code, wire] : codes) {
    records.mode_list[1].hw_code = code;
    records.mode_list[1].mode_colors.clear();
    keyboard->UnpackModePacket(PackModePacket(records, 1, 3).bytes.get(), 3);
    keyboard->WriteModeToDevice();
    EXPECT_EQ(Wire(), wire);
  }
  for (const std::int32_t index : {-1, 14}) {
    keyboard->ChooseMode(index);
    keyboard->WriteModeToDevice();
  }
  EXPECT_EQ(Wire(), Lines{});
}

TEST_F(HidKeyboardCase, ColoursGoOutZoneByZone) {
  CreateKeyboard(3, 0x0040);
  keyboard->StoreLedColor(0, 0x00030201);
  keyboard->StoreLedColor(2, 0xFF0000FF);
  Choose(keyboard, "WAVE", {.brightness = 99});
  Wire();
  const Lines expected = {"SetFeature 0 a4 21 02 32 00 00 01 02 03 01", "SetFeature 0 a4 21 02 32 00 00 00 00 00 02",
                          "SetFeature 0 a4 21 02 32 00 00 ff 00 00 04"};
  keyboard->WriteColorsToDevice();  // at the brightness of the first mode, whichever is active
  EXPECT_EQ(Wire(), expected);
  keyboard->WriteZoneToDevice(7);
  EXPECT_EQ(Wire(), expected);
  keyboard->SelectFirstMode();
  EXPECT_EQ(keyboard->CurrentModeIndex(), 0);
  EXPECT_EQ(Wire(), Lines{});
  keyboard->WriteModeToDevice();
  EXPECT_EQ(Wire(), expected);
  EXPECT_EQ(Keyboard().Lights().zones,
            (std::vector<HidZone>{{2, 50, 0, 0, {1, 2, 3}}, {2, 50, 0, 0, {}}, {2, 50, 0, 0, {255, 0, 0}}}));

  keyboard->StoreLedColor(2, 0x00336699);
  for (const std::int32_t led : {2, -1, 3, 0x7FFFFFFF}) keyboard->WriteLedToDevice(led);
  EXPECT_EQ(Wire(), Lines{"SetFeature 0 a4 21 02 32 00 00 99 66 33 04"});
}

TEST_F(HidKeyboardCase, AMaskHasRoomForSixteenZones) {
  CreateKeyboard(20, 0);
  EXPECT_EQ(Describe(keyboard).led_list.size(), 20U);
  keyboard->WriteColorsToDevice();
  Lines expected(16, "SetFeature 0 a4 21 02 32 00 00 00 00 00");
  for (std::size_t i = 0; i < 8; ++i) {
    char bit[4];
    std::snprintf(bit, sizeof(bit), " %02x", 1U << i);
    expected[i] += bit;
    expected[i + 8] += std::string(" 00") + bit;
  }
  EXPECT_EQ(Wire(), expected);
  keyboard->WriteLedToDevice(15);
  keyboard->WriteLedToDevice(16);
  EXPECT_EQ(Wire(), (Lines{expected[15], "SetFeature 0 a4 21 02 32"}));
  Choose(keyboard, "STATIC");
  EXPECT_EQ(Wire(), Lines{"SetFeature 0 a4 21 02 32 05 02 00 00 00 ff ff"});

  CreateKeyboard(16, 0);
  Choose(keyboard, "STATIC");
  EXPECT_EQ(Wire(), Lines{"SetFeature 0 a4 21 02 32 05 02 00 00 00 ff ff"});
  CreateKeyboard(260, 0);
  EXPECT_EQ(Describe(keyboard).led_list.size(), 260U);
}

TEST_F(HidKeyboardCase, AKeyboardThatTellsNothingHasNoZonesAndTwoModes) {
  Start("liar");
  EXPECT_EQ(Discover().count, 1);
  Log();
  keyboard = Create("ZarnHIDKeyboard");
  EXPECT_EQ(Log("Lighting::LightingHID::GetLightingDeviceBaseInfo").back(),
            "Error Device Id input: 33 output: 34 not match");
  EXPECT_EQ(ModesOf(keyboard), (Lines{"Direct", "STATIC"}));
  EXPECT_EQ(Describe(keyboard).led_list.size(), 0U);
  Wire();
  Choose(keyboard, "STATIC");
  keyboard->WriteColorsToDevice();
  keyboard->WriteLedToDevice(0);
  EXPECT_EQ(Wire(), Lines{"SetFeature 0 a4 21 02 32 05 02"});

  // Without discovery there is no list of devices to ask.
  keyboard.reset();
  Start("hid-keyboard");
  EXPECT_EQ(ModesOf(Create("ZarnHIDKeyboard")), (Lines{"Direct", "STATIC"}));
  EXPECT_EQ(Wire(), Lines{});
}

TEST_F(HidKeyboardCase, FieldsThatAreNarrowOrMissingTakeTheirRoomAndNoMore) {
  CreateKeyboard(ProfileOf("narrow-fields"));
  EXPECT_EQ(ModesOf(keyboard), (Lines{"Direct", "STATIC", "BREATHING", "NEON", "WAVE"}));
  Choose(keyboard, "BREATHING", {.speed = 9, .direction = 1, .colors = {0x030201}});
  EXPECT_EQ(Wire(), Lines{"SetFeature 0 a4 21 04 32 09 01 02 03 3f"});
  EXPECT_EQ(Keyboard().Lights().zones, std::vector<HidZone>(6, {4, 50, 9, 0, {1, 2, 3}}));
}

TEST_F(HidKeyboardCase, UpdatesReachAllKeyboardsAndTheFirstOneDescribesThem) {
  CreateKeyboard(ProfileOf("two-hid-keyboards"));
  EXPECT_EQ(Describe(keyboard).led_list.size(), 4U);
  EXPECT_EQ(ModesOf(keyboard).back(), "TWINKLING");
  Choose(keyboard, "STATIC", {.colors = {0xFF}});
  EXPECT_EQ(Keyboard(0).Lights().zones, std::vector<HidZone>(4, {2, 50, 5, 2, {255, 0, 0}}));
  EXPECT_EQ(Keyboard(1).Lights().zones[3], (HidZone{2, 50, 5, 2, {255, 0, 0}}));
  EXPECT_EQ(Keyboard(1).Lights().zones[4], HidZone{});

  Unplug();
  Choose(keyboard, "STATIC", {.colors = {0xFF00}});
  EXPECT_EQ(Keyboard(1).Lights().zones[3].color, (simulator::Color{0, 255, 0}));
  Plug();
  Choose(keyboard, "STATIC", {.colors = {0xFF0000}});
  EXPECT_EQ(Keyboard(0).Lights().zones[3].color, (simulator::Color{0, 0, 255}));
}

TEST_F(HidKeyboardCase, TheWorkerDrivesItAndEndsWithTheController) {
  CreateKeyboard(2, 0x0008);
  keyboard->StoreLedColor(1, 0xFF);
  keyboard->ChooseMode(2);
  Await([this] { return Keyboard().Lights().zones[1].mode == 4; });
  keyboard->RequestColorPush();
  Await([this] { return Keyboard().Lights().zones[1].color.red == 255; });
  keyboard.reset();
  EXPECT_EQ(Keyboard().Lights().zones[1].mode, 2);
}

TEST_F(HidKeyboardCase, AModePushUnderWayTakesItsFiveAttemptsAndNoMore) {
  NEEDS(Need::ShortStalls);
  CreateKeyboard(2, 0);
  Keyboard().Misbehave({.kind = Kind::Stall, .stall_ms = 1});
  keyboard->ChooseMode(1);
  Await([this] { return !notebook->TakeWire().empty(); });
  keyboard.reset();
  EXPECT_LT(Wire().size(), 5U);
}

TEST_F(HidKeyboardCase, UnpluggedInTheMiddleOfAColourPushItComesBackWithTheNextOne) {
  CreateKeyboard(2, 0);
  keyboard->StoreLedColor(0, 0xFF0000);
  Keyboard().Misbehave({.kind = Kind::Stall, .stall_ms = 600'000});
  keyboard->RequestColorPush();
  Await([this] { return !notebook->TakeWire().empty(); });
  Unplug();
  keyboard->WriteLedToDevice(1);  // waits until the zone under way has failed
  EXPECT_EQ(Log("Lighting::LightingHID::SetLightingDeviceUpdateReport").back(), "GetHIDDeviceHandle fail");
  Keyboard().Misbehave({.first = 0});
  Plug();
  keyboard->WriteColorsToDevice();
  EXPECT_EQ(Keyboard().Lights().zones[0].color, (simulator::Color{0, 0, 255}));
}

TEST_F(HidKeyboardCase, EveryExchangeThatFailsIsTriedFiveTimes) {
  CreateKeyboard(2, 0);
  for (std::uint32_t failing = 1; failing <= 6; ++failing) {
    Keyboard().Misbehave({.kind = Kind::Fail, .first = failing});
    Choose(keyboard, "STATIC");
    Choose(keyboard, "STATIC", {.brightness = 7});
    EXPECT_EQ(Wire().size(), failing == 1 ? 10U : failing == 2 ? 6U : 2U);
    Keyboard().Misbehave({.first = 0});
  }
  std::vector<Kind> kinds = {Kind::Fail};
  if (TheRoad().WhyNot(Need::ShortStalls).empty()) kinds.push_back(Kind::Stall);
  for (const Kind kind : kinds) {
    // Base information: each attempt is a request and a reply.
    Keyboard().Misbehave({.kind = kind, .first = 2, .once = true, .stall_ms = 1});
    EXPECT_EQ(Describe(Create("ZarnHIDKeyboard")).led_list.size(), 2U);
    EXPECT_EQ(Wire().size(), 4U);
    EXPECT_EQ(
        Log("Lighting::LightingHID::GetLightingDeviceBaseInfo")[1],
        kind == Kind::Fail ? "Error 1F: getting feature from HID device" : "Error 79: getting feature from HID device");
    Keyboard().Misbehave({.kind = kind, .stall_ms = 1});
    EXPECT_EQ(Describe(Create("ZarnHIDKeyboard")).led_list.size(), 0U);
    EXPECT_EQ(Wire().size(), 5U);
    EXPECT_EQ(Log("TsHID::SetHIDFeature").size(), 5U);
  }
  Keyboard().Misbehave({.kind = Kind::Short});
  EXPECT_EQ(Describe(Create("ZarnHIDKeyboard")).led_list.size(), 0U);  // counts as an answer of zeros
}

TEST_F(HidKeyboardCase, StandsBesideTheEcDevices) {
  Start("hybrid");
  ASSERT_EQ(Discover().names, L"ZarnECGlobal,ZarnECKeyboard,ZarnHIDKeyboard");
  const Device global = Create("ZarnECGlobal");
  const Device ec = Create("ZarnECKeyboard");
  const Device hid = Create("ZarnHIDKeyboard");
  Wire();
  Choose(ec, "STATIC", {.colors = {0xFF}});
  Choose(hid, "STATIC", {.colors = {0xFF}});
  Choose(global, "STATIC", {.colors = {0xFF}});
  // One mode, three roads: zone by zone in the firmware, an update, an effect of the firmware.
  EXPECT_EQ(Wire(), (Lines{"SetGamingLED 08 00 00 00 00 0f", "SetGamingKBBacklight 00 00 32 00 00 00 00 00 03 01",
                           "SetGamingRgbKb 65281", "SetGamingRgbKb 65282", "SetGamingRgbKb 65284",
                           "SetGamingRgbKb 65288", "SetFeature 0 a4 21 02 32 05 02 ff 00 00 ff ff",
                           "SetGamingKBBacklight 00 05 32 00 02 ff 00 00 03 03"}));
}

}  // namespace
}  // namespace test
