#include "zarnctl/panel.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace zarnctl {
namespace {

// Both tables stand in the plug-in too, and here once more, because a check that asked the plug-in would find it right
// in any case.

/// The host's codes of effects, and the HID keyboard's.
constexpr std::array<std::pair<std::int32_t, std::uint8_t>, 13> kHidEffects{
    {{0, 2}, {1, 4}, {2, 5}, {3, 7}, {4, 8}, {5, 9}, {6, 10}, {7, 11}, {8, 13}, {9, 14}, {10, 15}, {11, 12}, {34, 6}}};

/// By direction setting: codes count from 1, with the first two changed over.
constexpr std::array<std::uint8_t, 6> kDirections{2, 1, 3, 4, 5, 6};

std::uint8_t HostCode(std::uint8_t hid_code) {
  const auto* const found = std::ranges::find(kHidEffects, hid_code, &std::pair<std::int32_t, std::uint8_t>::second);
  return found != kHidEffects.end() ? static_cast<std::uint8_t>(found->first) : hid_code;
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

std::uint8_t HidEffectCode(std::int32_t host_code) {
  const auto* const found = std::ranges::find(kHidEffects, host_code, &std::pair<std::int32_t, std::uint8_t>::first);
  return found != kHidEffects.end() ? found->second : static_cast<std::uint8_t>(host_code);
}

std::optional<std::uint8_t> DirectionCode(std::uint32_t direction_setting) {
  if (direction_setting >= kDirections.size()) return std::nullopt;
  return kDirections.at(direction_setting);
}

}  // namespace zarnctl
