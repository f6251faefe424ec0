#include "zarnctl/drawing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "zarnctl/lights.h"

namespace zarnctl {
namespace {

using simulator::Effect;
using simulator::KeyboardLights;

std::vector<ModeRecord> Modes() {
  std::vector<ModeRecord> modes(3);
  modes[0].label = "Direct";
  modes[0].hw_code = kPerLedModeCode;
  modes[0].color_source = ColorSource::PerLedColors;
  modes[1].label = "PULSE";
  modes[1].hw_code = 1;
  modes[1].color_source = ColorSource::ModeColors;
  modes[2].label = "RAINBOW";
  modes[2].hw_code = 3;
  return modes;
}

KeyboardLights TwoZones() {
  return {.zones = {{true, {255, 0, 128}}, {false, {0, 0, 255}}}, .brightness = 100, .effect = {}};
}

KeyboardLights Running(const Effect& effect) {
  KeyboardLights lights = TwoZones();
  lights.brightness = 30;
  lights.effect = effect;
  return lights;
}

TEST(PlainLights, ShowEachZoneWhenNoEffectRuns) {
  EXPECT_EQ(PlainLights(TwoZones(), Modes()), "keyboard: brightness 100\nzone 1: #ff0080\nzone 2: off\n");
}

TEST(PlainLights, NameAnEffectByTheModeThatHasItsCode) {
  EXPECT_EQ(PlainLights(Running({1, 7, 2, {255, 0, 0}}), Modes()),
            "keyboard: brightness 30, PULSE speed 7 direction 2 colour #ff0000\n");
  EXPECT_EQ(PlainLights(Running({3, 9, 1, {}}), Modes()), "keyboard: brightness 30, RAINBOW speed 9 direction 1\n");
  EXPECT_EQ(PlainLights(Running({6, 5, 2, {0, 1, 0}}), Modes()),
            "keyboard: brightness 30, effect 6 speed 5 direction 2 colour #000100\n");
}

/// The text of one key of three columns.
std::string Key(int red, int green, int blue) {
  return "\033[38;2;" + std::to_string(red) + ";" + std::to_string(green) + ";" + std::to_string(blue) + "m▇▇▇";
}

std::string FirstRow(const std::string& drawing) { return drawing.substr(0, drawing.find('\n')); }

TEST(DrawnKeyboard, DividesFifteenKeysBetweenTheZonesAndKeepsDarkOnesVisible) {
  std::string row;
  for (int i = 0; i < 7; ++i) row += Key(255, 32, 144) + " ";
  for (int i = 7; i < 15; ++i) row += Key(32, 32, 32) + (i < 14 ? " " : "\033[0m");
  const std::string drawing = DrawnKeyboard(TwoZones(), 0);
  EXPECT_EQ(FirstRow(drawing), row);
  EXPECT_EQ(std::count(drawing.begin(), drawing.end(), '\n'), 5);
}

TEST(DrawnKeyboard, IsScaledByBrightness) {
  KeyboardLights lights = TwoZones();
  lights.brightness = 50;
  EXPECT_TRUE(DrawnKeyboard(lights, 0).starts_with(Key(144, 32, 88) + " "));
  lights.brightness = 0;
  EXPECT_TRUE(DrawnKeyboard(lights, 0).starts_with(Key(32, 32, 32) + " "));
}

TEST(DrawnKeyboard, BreathesAtTheSpeedOfTheEffect) {
  const auto breath = [](std::uint8_t speed, double seconds) {
    KeyboardLights lights = Running({1, speed, 2, {255, 0, 0}});
    lights.brightness = 100;
    return FirstRow(DrawnKeyboard(lights, seconds)).substr(0, Key(255, 32, 32).size());
  };
  EXPECT_EQ(breath(5, 0), Key(255, 32, 32));
  EXPECT_TRUE(breath(5, 2.0 / 3).starts_with("\033[38;2;32;32;32m"));
  EXPECT_NE(breath(9, 0.3), breath(1, 0.3));
}

TEST(DrawnKeyboard, MovesInTheDirectionOfTheEffect) {
  const auto keys = [](std::uint8_t direction) {
    const std::string row = FirstRow(DrawnKeyboard(Running({4, 5, direction, {255, 255, 255}}), 0));
    std::string lit;
    for (std::size_t at = row.find("8;2;"); at != std::string::npos; at = row.find("8;2;", at + 1)) {
      lit += row.compare(at, 6, "8;2;32") == 0 ? '.' : '#';
    }
    return lit;
  };
  EXPECT_EQ(keys(1), "#######........");
  EXPECT_EQ(keys(2), "........#######");
  EXPECT_EQ(keys(3), "...............");
  EXPECT_EQ(keys(4), "###############");
  EXPECT_EQ(keys(5), "....#######....");
}

ControllerRecords Described(std::int32_t current_mode) {
  ControllerRecords records;
  records.mode_list = Modes();
  records.mode_list[0].brightness_setting = 100;
  records.mode_list[1].brightness_setting = 30;
  records.mode_list[1].speed_setting = 7;
  records.mode_list[1].mode_colors = {0x0000ff};
  records.color_table = {0x8000ff, 0};
  records.current_mode = current_mode;
  return records;
}

TEST(Shows, ComparesEverySettingOfTheActiveMode) {
  EXPECT_TRUE(Shows(TwoZones(), Described(0)));
  EXPECT_TRUE(Shows(Running({1, 7, 2, {255, 0, 0}}), Described(1)));
  EXPECT_FALSE(Shows(TwoZones(), Described(1)));
  EXPECT_FALSE(Shows(Running({1, 7, 2, {255, 0, 0}}), Described(0)));
  for (const Effect& other : {Effect{2, 7, 2, {255, 0, 0}}, Effect{1, 6, 2, {255, 0, 0}}, Effect{1, 7, 1, {255, 0, 0}},
                              Effect{1, 7, 2, {255, 0, 1}}}) {
    EXPECT_FALSE(Shows(Running(other), Described(1)));
  }
  KeyboardLights lights = TwoZones();
  lights.zones[1].on = true;
  EXPECT_FALSE(Shows(lights, Described(0)));
  lights = TwoZones();
  lights.brightness = 99;
  EXPECT_FALSE(Shows(lights, Described(0)));
}

TEST(FindFaults, TellEveryRefusalOfTheFirmware) {
  simulator::Profile profile;
  profile.ec = {.keyboard_zones = 1, .light_bar = false, .version = {2, 91}};
  simulator::Notebook notebook(std::move(profile));
  notebook.CallFirmware("SetGamingRgbKb", L"65282");
  notebook.CallFirmware("SetGamingRgbKb", L"65281");
  notebook.CallFirmware("SetGamingRgbKb", L"65284");
  const std::vector<std::string> faults = FindFaults(notebook, Described(1));
  ASSERT_EQ(faults.size(), 2U);
  EXPECT_EQ(faults[0], "the firmware refused SetGamingRgbKb: byte 0 is 2, a zone that is not there");
}

}  // namespace
}  // namespace zarnctl
