#include "zarnctl/panel.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace zarnctl {
namespace {

/// What a HID keyboard's zone runs when it just shines.
constexpr std::uint8_t kHidStatic = 2;

/// The HID keyboard's codes of effects, and the host's.
constexpr std::array<std::pair<std::uint8_t, std::uint8_t>, 12> kHidEffects{
    {{4, 1}, {5, 2}, {6, 34}, {7, 3}, {8, 4}, {9, 5}, {10, 6}, {11, 7}, {12, 11}, {13, 8}, {14, 9}, {15, 10}}};

std::uint8_t HostCode(std::uint8_t hid_code) {
  const auto* const found = std::ranges::find(kHidEffects, hid_code, &std::pair<std::uint8_t, std::uint8_t>::first);
  return found != kHidEffects.end() ? found->second : hid_code;
}

Panel::Zone ZoneOf(const simulator::HidLights::Zone& lights) {
  Panel::Zone zone{.on = lights.mode != 0, .color = lights.color, .brightness = lights.brightness, .effect = {}};
  if (zone.on && lights.mode != kHidStatic) {
    zone.effect = {
        .code = HostCode(lights.mode), .speed = lights.speed, .direction = lights.direction, .color = lights.color};
  }
  return zone;
}

Panel PanelOf(const simulator::KeyboardLights& lights) {
  Panel panel{.name = "keyboard", .shape = Panel::Shape::Keyboard, .zones = {}};
  for (const auto& [on, color] : lights.zones) panel.zones.push_back({on, color, lights.brightness, lights.effect});
  return panel;
}

Panel PanelOf(const simulator::LightBarLights& lights) {
  return {.name = "light bar", .shape = Panel::Shape::Bar, .zones = {{false, {}, lights.brightness, lights.effect}}};
}

Panel PanelOf(const simulator::HidLights& lights, std::size_t index) {
  Panel panel{.name = index == 0 ? "HID keyboard" : "HID keyboard " + std::to_string(index + 1),
              .shape = Panel::Shape::Keyboard,
              .zones = {}};
  std::ranges::transform(lights.zones, std::back_inserter(panel.zones), ZoneOf);
  return panel;
}

}  // namespace

std::vector<Panel> PanelsOf(simulator::Notebook& notebook) {
  std::vector<Panel> panels;
  if (const auto lights = notebook.Lights(); !lights.zones.empty()) panels.push_back(PanelOf(lights));
  if (const auto lights = notebook.LightBar()) panels.push_back(PanelOf(*lights));
  for (std::size_t i = 0; i < notebook.HidKeyboardCount(); ++i) {
    const simulator::HidKeyboard& keyboard = notebook.HidKeyboardAt(i);
    if (keyboard.Connect()) panels.push_back(PanelOf(keyboard.Lights(), i));
  }
  return panels;
}

}  // namespace zarnctl
