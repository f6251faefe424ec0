#include "zarnctl/drawing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zarnctl {
namespace {

using simulator::Effect;
using simulator::HidKeyboard;

std::vector<ModeRecord> Modes() {
  std::vector<ModeRecord> modes(3);
  modes[0].hw_code = kPerLedModeCode;
  modes[0].color_source = ColorSource::PerLedColors;
  modes[1].hw_code = 1;
  modes[1].color_source = ColorSource::ModeColors;
  modes[1].label = "PULSE";
  modes[2].hw_code = 3;
  modes[2].label = "RAINBOW";
  return modes;
}

Panel TwoZones(std::uint8_t brightness = 100, const std::optional<Effect>& effect = {}) {
  return {"keyboard",
          Panel::Shape::Keyboard,
          {{true, {255, 0, 128}, brightness, effect}, {false, {0, 0, 255}, brightness, effect}}};
}

TEST(PlainLights, NameEffectsAndTellZoneByZoneWhatTheZonesDoNotShare) {
  EXPECT_EQ(PlainLights({TwoZones(30, Effect{3, 9, 1, {}})}, Modes()),
            "keyboard: brightness 30, RAINBOW speed 9 direction 1\n");
  EXPECT_EQ(PlainLights({TwoZones(30, Effect{6, 5, 2, {0, 1, 0}})}, Modes()),
            "keyboard: brightness 30, effect 6 speed 5 direction 2 colour #000100\n");
  Panel panel = TwoZones(30);
  panel.zones[1].effect = Effect{3, 9, 1, {}};
  EXPECT_EQ(PlainLights({panel}, Modes()),
            "keyboard\nzone 1: brightness 30, #ff0080\nzone 2: brightness 30, RAINBOW speed 9 direction 1\n");
  panel.zones.assign(5, TwoZones().zones[0]);
  EXPECT_EQ(PlainLights({panel}, Modes()), "keyboard: brightness 100\nzones 1 to 5: #ff0080\n");
  panel.zones.clear();
  EXPECT_EQ(PlainLights({panel}, Modes()), "keyboard: no zones\n");
}

simulator::Notebook WithHidKeyboards(std::vector<HidKeyboard::Settings> keyboards) {
  simulator::Profile profile;
  profile.hid_keyboards = std::move(keyboards);
  return simulator::Notebook(std::move(profile));
}

/// A keyboard of two zones that has all effects.
HidKeyboard::Settings TwoHidZones() {
  HidKeyboard::Settings settings;
  settings.report_length = 12;
  settings.zones = 2;
  settings.effects = 0xFFFFFFFF;
  return settings;
}

void Update(simulator::Notebook& notebook, std::size_t keyboard, std::vector<std::uint8_t> values) {
  values.insert(values.begin(), {0xA4, 0x21});
  values.resize(12);
  notebook.SetFeature(keyboard, notebook.HidKeyboardAt(keyboard).Connect().value_or(0), values);
}

TEST(Panels, HidKeyboardsGetTheHostsCodesAndLeaveWhenUnplugged) {
  simulator::Notebook notebook = WithHidKeyboards({TwoHidZones(), TwoHidZones()});
  const std::pair<std::uint8_t, std::uint8_t> codes[] = {{4, 1},  {5, 2},   {6, 34}, {7, 3},   {8, 4},
                                                         {9, 5},  {10, 6},  {11, 7}, {12, 11}, {13, 8},
                                                         {14, 9}, {15, 10}, {31, 31}};
  for (const auto& [keyboard_code, host_code] : codes) {
    Update(notebook, 1, {keyboard_code, 40, 3, 6, 1, 2, 3, 1});
    const Panel panel = PanelsOf(notebook).at(1);
    EXPECT_EQ(panel.zones.at(0).effect, (Effect{host_code, 3, 6, {1, 2, 3}}));
    EXPECT_EQ(panel.zones.at(1), Panel::Zone());
  }
  Update(notebook, 1, {2, 40, 3, 6, 1, 2, 3, 1});
  EXPECT_EQ(PanelsOf(notebook).at(1).zones.at(0), (Panel::Zone{true, {1, 2, 3}, 40, {}}));
  notebook.HidKeyboardAt(0).Unplug();
  ASSERT_EQ(PanelsOf(notebook).size(), 1U);
  EXPECT_EQ(PanelsOf(notebook)[0].name, "HID keyboard 2");
}

/// The text of one key of three columns.
std::string Key(int red, int green, int blue) {
  return "\033[38;2;" + std::to_string(red) + ";" + std::to_string(green) + ";" + std::to_string(blue) + "m▇▇▇";
}

TEST(DrawnPanel, DividesFifteenKeysBetweenTheZonesScalesThemAndKeepsDarkOnesVisible) {
  std::string row;
  for (int i = 0; i < 7; ++i) row += Key(255, 32, 144) + " ";
  for (int i = 7; i < 15; ++i) row += Key(32, 32, 32) + (i < 14 ? " " : "\033[0m");
  const std::string drawing = DrawnPanel(TwoZones(), 0);
  EXPECT_TRUE(drawing.starts_with(row + "\n")) << drawing;
  EXPECT_EQ(std::count(drawing.begin(), drawing.end(), '\n'), 5);
  EXPECT_TRUE(DrawnPanel(TwoZones(50), 0).starts_with(Key(144, 32, 88) + " "));
}

}  // namespace
}  // namespace zarnctl
