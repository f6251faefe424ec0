#include "zarnctl/panel.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace zarnctl {
namespace {

/// A HID keyboard's code for a zone that shows a steady colour.
constexpr std::uint8_t kHidStatic = 2;

/// Pairs: the HID keyboard's code of an effect, and the host's.
constexpr std::array<std::pair<std::uint8_t, std::uint8_t>, 12> kHidEffects{
    {{4, 1}, {5, 2}, {6, 34}, {7, 3}, {8, 4}, {9, 5}, {10, 6}, {11, 7}, {12, 11}, {13, 8}, {14, 9}, {15, 10}}};

std::uint8_t HostCode(std::uint8_t hid_code) {
  const auto* const found = std::ranges::find(kHidEffects, hid_code, &std::pair<std::uint8_t, std::uint8_t>::first);
  return found != kHidEffects.end() ? found->second : hid_code;
}

Panel::Zone ZoneOf(const simulator::HidLights::Zone& lights) {
  Panel::Zone zone{.on = lights.mode != 0, .color = lights.color, .brightness = lights.brightness};
  if (zone.on && lights.mode != kHidStatic) {
    zone.effect = {HostCode(lights.mode), lights.speed, lights.direction, lights.color};
  }
  return zone;
}

}  // namespace

std::vector<Panel> PanelsOf(simulator::Notebook& notebook) {
  std::vector<Panel> panels;
  if (const auto lights = notebook.Lights(); !lights.zones.empty()) {
    auto& zones = panels.emplace_back(Panel{.name = "keyboard"}).zones;
    for (const auto& [on, color] : lights.zones) zones.push_back({on, color, lights.brightness, lights.effect});
  }
  if (const auto lights = notebook.LightBar()) {
    panels.push_back({"light bar", Panel::Shape::Bar, {{false, {}, lights->brightness, lights->effect}}});
  }
  for (std::size_t i = 0; i < notebook.HidKeyboardCount(); ++i) {
    const simulator::HidKeyboard& keyboard = notebook.HidKeyboardAt(i);
    if (!keyboard.Connect()) continue;
    auto& zones = panels.emplace_back(Panel{.name = "HID keyboard" + (i > 0 ? " " + std::to_string(i + 1) : "")}).zones;
    for (const auto& zone : keyboard.Lights().zones) zones.push_back(ZoneOf(zone));
  }
  return panels;
}

}  // namespace zarnctl
