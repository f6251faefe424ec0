#include "zarnctl/drawing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zarnctl {
namespace {

using simulator::Effect;

std::vector<ModeRecord> Modes() {
  std::vector<ModeRecord> modes(1);
  modes[0].hw_code = 3;
  modes[0].label = "RAINBOW";
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
  Panel panel = TwoZones(30);
  panel.zones[1].effect = Effect{3, 9, 1, {}};
  EXPECT_EQ(PlainLights({panel}, Modes()),
            "keyboard\nzone 1: brightness 30, #ff0080\nzone 2: brightness 30, RAINBOW speed 9 direction 1\n");
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
}

}  // namespace
}  // namespace zarnctl
