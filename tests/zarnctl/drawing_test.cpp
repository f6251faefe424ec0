#include "zarnctl/drawing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
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
  modes[0].hw_code = kPerLedModeCode;
  modes[0].color_source = ColorSource::PerLedColors;
  modes[1].hw_code = 1;
  modes[1].color_source = ColorSource::ModeColors;
  modes[2].hw_code = 3;
  modes[2].label = "RAINBOW";
  return modes;
}

KeyboardLights TwoZones(std::uint8_t brightness = 100, std::optional<Effect> effect = {}) {
  return {.zones = {{true, {255, 0, 128}}, {false, {0, 0, 255}}}, .brightness = brightness, .effect = effect};
}

TEST(PlainLights, NameAnEffectByItsCodeWhenNoModeHasIt) {
  EXPECT_EQ(PlainLights(TwoZones(30, Effect{3, 9, 1, {}}), Modes()),
            "keyboard: brightness 30, RAINBOW speed 9 direction 1\n");
  EXPECT_EQ(PlainLights(TwoZones(30, Effect{6, 5, 2, {0, 1, 0}}), Modes()),
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
  EXPECT_TRUE(DrawnKeyboard(TwoZones(50), 0).starts_with(Key(144, 32, 88) + " "));
  EXPECT_TRUE(DrawnKeyboard(TwoZones(0), 0).starts_with(Key(32, 32, 32) + " "));
}

TEST(DrawnKeyboard, BreathesAtTheSpeedOfTheEffect) {
  const auto breath = [](std::uint8_t speed, double seconds) {
    return DrawnKeyboard(TwoZones(100, Effect{1, speed, 2, {255, 0, 0}}), seconds);
  };
  EXPECT_TRUE(breath(5, 0).starts_with(Key(255, 32, 32)));
  EXPECT_TRUE(breath(5, 2.0 / 3).starts_with(Key(32, 32, 32)));
  EXPECT_NE(breath(9, 0.3), breath(1, 0.3));
}

TEST(DrawnKeyboard, MovesInTheDirectionOfTheEffect) {
  const std::pair<std::uint8_t, const char*> directions[] = {{1, "#######........"},
                                                             {2, "........#######"},
                                                             {3, "..............."},
                                                             {4, "###############"},
                                                             {5, "....#######...."}};
  for (const auto& [direction, keys] : directions) {
    const std::string row = FirstRow(DrawnKeyboard(TwoZones(30, Effect{4, 5, direction, {255, 255, 255}}), 0));
    std::string lit;
    for (std::size_t at = row.find("8;2;"); at != std::string::npos; at = row.find("8;2;", at + 1)) {
      lit += row.compare(at, 6, "8;2;32") == 0 ? '.' : '#';
    }
    EXPECT_EQ(lit, keys) << int{direction};
  }
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
  const Effect pulse{1, 7, 2, {255, 0, 0}};
  EXPECT_TRUE(Shows(TwoZones(), Described(0)));
  EXPECT_TRUE(Shows(TwoZones(30, pulse), Described(1)));
  EXPECT_FALSE(Shows(TwoZones(99), Described(0)));
  EXPECT_FALSE(Shows(TwoZones(100, pulse), Described(0)));
  EXPECT_FALSE(Shows(TwoZones(30), Described(1)));
  for (const Effect& other : {Effect{2, 7, 2, {255, 0, 0}}, Effect{1, 6, 2, {255, 0, 0}}, Effect{1, 7, 1, {255, 0, 0}},
                              Effect{1, 7, 2, {255, 0, 1}}}) {
    EXPECT_FALSE(Shows(TwoZones(30, other), Described(1)));
  }
  KeyboardLights lights = TwoZones();
  lights.zones[1].on = true;
  EXPECT_FALSE(Shows(lights, Described(0)));
}

TEST(FindFaults, TellEveryRefusalOfTheFirmware) {
  simulator::Profile profile;
  profile.ec = {.keyboard_zones = 1, .light_bar = false, .version = {2, 91}};
  simulator::Notebook notebook(std::move(profile));
  for (const wchar_t* input : {L"65282", L"65281", L"65284"}) notebook.CallFirmware("SetGamingRgbKb", input);
  EXPECT_EQ(FindFaults(notebook, Described(1)),
            (std::vector<std::string>{"the firmware refused SetGamingRgbKb: byte 0 is 2, a zone that is not there",
                                      "the firmware refused SetGamingRgbKb: byte 0 is 4, a zone that is not there"}));
}

}  // namespace
}  // namespace zarnctl
