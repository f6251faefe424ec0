#include "zarnctl/panel.h"

#include <algorithm>
#include <cstddef>

#include "hidkeyboard/hid_keyboard_modes.h"

namespace zarnctl {
namespace {

/// The host's code for a HID keyboard's code of an effect; one that no mode has stands for itself.
std::uint8_t HostCode(std::uint8_t device_code) {
  static const std::vector<ModeRecord> kModes = MakeHidKeyboardModes(0xFFFFFFFF);
  for (const ModeRecord& mode : kModes) {
    const auto code = static_cast<std::uint32_t>(mode.hw_code);
    if (DeviceCodeOf(code) == device_code) return static_cast<std::uint8_t>(code);
  }
  return device_code;
}

Panel::Zone ZoneOf(const simulator::HidLights::Zone& lights) {
  Panel::Zone zone{.on = lights.mode != 0, .color = lights.color, .brightness = lights.brightness};
  if (zone.on && lights.mode != kStaticDeviceMode) {
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
