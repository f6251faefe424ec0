/// The whole-device light with its light bar.

#include "tests/cases/case.h"

namespace test {
namespace {

using simulator::Effect;
using simulator::LightBarLights;

class EcGlobalCase : public Case {
 protected:
  Device CreateGlobal(const std::string& profile) {
    Start(profile);
    Device global = Create("ZarnECGlobal");
    Wire();
    Log();
    return global;
  }
};

TEST_F(EcGlobalCase, DescribesOneLightWithTheModesOfTheEcKeyboard) {
  const Device global = CreateGlobal("light-bar");
  const ControllerRecords records = Describe(global);
  EXPECT_EQ(Names(records), (Lines{"Zarn Global Device", "Zarn", "Zarn Global Device"}));
  EXPECT_EQ(records.hw_kind, 5);
  ASSERT_TRUE(records.zone_list.size() == 1 && records.led_list.size() == 1 && records.color_table.size() == 1);
  EXPECT_EQ(records.zone_list[0].label, "Global Backlight zone");
  EXPECT_EQ(records.zone_list[0].zone_kind, 1);
  EXPECT_TRUE(records.zone_list[0].led_total_min == 1 && records.zone_list[0].led_total_max == 1);
  EXPECT_EQ(records.led_list[0].label, "Global Backlight zone 1");

  // The EC keyboard's modes, but for two rows.
  Lines modes = ModesInNumbers(Create("ZarnECKeyboard"));
  modes[0] = "Direct 255 32 0 0 0 0 0 0 0 0 0 1";
  modes[4] = "WAVE 3 19 1 9 0 100 0 0 5 50 0 0";
  EXPECT_EQ(ModesInNumbers(global), modes);
}

TEST_F(EcGlobalCase, EveryModeButDirectIsOneEffectForAllLights) {
  const Device global = CreateGlobal("light-bar");
  Choose(global, "STATIC", {.colors = {0xFF0000}});
  EXPECT_EQ(Wire(), Lines{"SetGamingKBBacklight 00 05 32 00 02 00 00 ff 03 03"});
  EXPECT_EQ(LightBar(), (LightBarLights{50, Effect{0, 5, 2, {0, 0, 255}}}));
  EXPECT_EQ(EcLights().zones[3].color, (simulator::Color{0, 0, 255}));
  Choose(Create("ZarnECKeyboard"), "WAVE");  // for the keyboard alone
  EXPECT_EQ(LightBar(), (LightBarLights{50, Effect{0, 5, 2, {0, 0, 255}}}));
  Wire();
  Log();
  Choose(global, "NEON", {.colors = {0xFFFFFF}});
  EXPECT_EQ(Wire(), Lines{"SetGamingKBBacklight 02 05 32 00 02 00 00 00 03 03"});
  EXPECT_EQ(LightBar(), (LightBarLights{50, Effect{2, 5, 2, {}}}));
  Lines log = {"Enter!!", "mode=2, speed=5, direction=2, brightness=50, color= (0X0,0X0,0X0)"};
  const char* const bytes[] = {"2", "5", "32", "0", "2", "0", "0", "0", "3", "3", "0", "0", "0", "0", "0", "0"};
  for (std::size_t i = 0; i < 16; ++i) log.push_back("input_data[" + std::to_string(i) + "] = 0X" + bytes[i]);
  EXPECT_EQ(Log("ZarnECGlobalController::SetMode"), log);
  Choose(global, "TWINKLING", {.speed = 0x109, .brightness = 0x164, .direction = 5, .colors = {0x030201}});
  EXPECT_EQ(Wire(), Lines{"SetGamingKBBacklight 07 09 64 00 06 01 02 03 03 03"});
}

TEST_F(EcGlobalCase, HasNoColourPath) {
  const Device global = CreateGlobal("light-bar");
  global->StoreLedColor(0, 0xFF);
  Choose(global, "Direct");
  global->WriteColorsToDevice();
  global->WriteZoneToDevice(0);
  global->WriteLedToDevice(0);
  global->ChooseMode(9);
  global->WriteModeToDevice();
  global->SelectFirstMode();
  EXPECT_EQ(global->CurrentModeIndex(), 0);
  EXPECT_EQ(global->FetchLedColor(0), 0xFFU);
  EXPECT_EQ(Wire(), Lines{});
}

TEST_F(EcGlobalCase, WithoutALightBarThePacketIsForTheKeyboard) {
  const Device global = CreateGlobal("four-zone");
  Choose(global, "STATIC", {.colors = {0xFF0000}});
  EXPECT_EQ(Wire(), Lines{"SetGamingKBBacklight 00 05 32 00 02 00 00 ff 03 01"});
}

}  // namespace
}  // namespace test
