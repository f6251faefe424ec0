#include "zarnctl/lights.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "hid/lighting_hid.h"
#include "zarnctl/complaint.h"
#include "zarnctl/drawing.h"
#include "zarnctl/panel.h"

namespace zarnctl {
namespace {

using zarn::WRV520::Lighting::kKeyboardId;
using zarn::WRV520::Lighting::kLightingUsagePage;
namespace FieldUsage {
constexpr std::uint8_t Mode = 0x41;
constexpr std::uint8_t Speed = 0x42;
constexpr std::uint8_t Brightness = 0x43;
constexpr std::uint8_t Direction = 0x44;
constexpr std::uint8_t Red = 0x45;
constexpr std::uint8_t Green = 0x46;
constexpr std::uint8_t Blue = 0x47;
constexpr std::uint8_t ZoneMask = 0x48;
}  // namespace FieldUsage
using simulator::HidKeyboard;
using simulator::HidLights;
using simulator::KeyboardLights;
using simulator::Notebook;

simulator::Color LightOf(PackedColor color) { return {RedOf(color), GreenOf(color), BlueOf(color)}; }

PackedColor OwnColor(const ModeRecord& mode) {
  return mode.color_source == ColorSource::ModeColors && !mode.mode_colors.empty() ? mode.mode_colors.front() : 0;
}

const ModeRecord& ActiveMode(const ControllerRecords& records) {
  return records.mode_list.at(static_cast<std::size_t>(records.current_mode));
}

bool IsPerLed(const ModeRecord& mode) { return mode.color_source == ColorSource::PerLedColors; }

/// The effect that the embedded controller should run.
std::optional<simulator::Effect> EcEffect(const ModeRecord& mode) {
  const auto direction = DirectionCode(mode.direction_setting);
  if (!direction) return std::nullopt;
  return simulator::Effect{.code = static_cast<std::uint8_t>(mode.hw_code),
                           .speed = static_cast<std::uint8_t>(mode.speed_setting),
                           .direction = *direction,
                           .color = LightOf(OwnColor(mode))};
}

bool ShowsZones(const KeyboardLights& lights, const std::vector<PackedColor>& colors) {
  const auto shows = [](const KeyboardLights::Zone& zone, PackedColor color) {
    return color == 0 ? !zone.on : zone.on && zone.color == LightOf(color);
  };
  return !lights.effect && std::equal(lights.zones.begin(), lights.zones.end(), colors.begin(), colors.end(), shows);
}

bool EcKeyboardShows(Notebook& notebook, const ControllerRecords& records) {
  const KeyboardLights lights = notebook.Lights();
  const ModeRecord& mode = ActiveMode(records);
  if (lights.brightness != mode.brightness_setting) return false;
  if (IsPerLed(mode)) return ShowsZones(lights, records.color_table);
  // "STATIC" is no effect of this keyboard's: it shows as the zones' own colours.
  if (mode.hw_code == 0) return ShowsZones(lights, std::vector<PackedColor>(lights.zones.size(), OwnColor(mode)));
  const auto effect = EcEffect(mode);
  return effect && lights.effect == effect;
}

bool EcGlobalShows(Notebook& notebook, const ControllerRecords& records) {
  const ModeRecord& mode = ActiveMode(records);
  if (IsPerLed(mode)) return true;  // is sent nowhere, so the lights stay as they were
  const auto effect = EcEffect(mode);
  const auto bar = notebook.LightBar();
  return effect && bar && bar->brightness == mode.brightness_setting && bar->effect == effect;
}

/// How many bytes an update has for the field; nothing when it has no place in it, as what comes behind a field wider
/// than four bytes.
std::optional<std::uint32_t> WidthOf(const HidKeyboard::Settings& keyboard, std::uint16_t usage) {
  for (const HidKeyboard::Field& field : keyboard.update) {
    if (field.bits / 8 > 4) break;
    if (field.usage == usage) return field.bits / 8;
  }
  return std::nullopt;
}

/// Whether an update can carry the low byte of the field.
bool Declares(const HidKeyboard::Settings& keyboard, std::uint16_t usage) {
  return WidthOf(keyboard, usage).value_or(0) > 0;
}

/// How many zones the keyboard's zone mask can name; without one all of them are meant.
std::size_t NamedZones(const HidKeyboard::Settings& keyboard) {
  return std::min<std::size_t>(std::size_t{8} * WidthOf(keyboard, FieldUsage::ZoneMask).value_or(2), 16);
}

/// Whether discovery can know of the keyboard, and updates be meant for it.
bool IsServed(const HidKeyboard::Settings& keyboard) {
  const auto served = static_cast<std::ptrdiff_t>(
      std::min<std::size_t>(keyboard.claimed_ids.value_or(0xFF), keyboard.device_ids.size()));
  return keyboard.plugged && keyboard.answers && keyboard.usage_page == kLightingUsagePage &&
         std::count(keyboard.device_ids.begin(), keyboard.device_ids.begin() + served, kKeyboardId) != 0;
}

bool ZoneShows(const HidKeyboard::Settings& keyboard, const HidLights::Zone& zone, const HidLights::Zone& expected) {
  const auto agrees = [&](std::uint16_t usage, std::uint8_t shown, std::uint8_t wanted) {
    return !Declares(keyboard, usage) || shown == wanted;
  };
  return agrees(FieldUsage::Mode, zone.mode, expected.mode) &&
         agrees(FieldUsage::Brightness, zone.brightness, expected.brightness) &&
         agrees(FieldUsage::Speed, zone.speed, expected.speed) &&
         agrees(FieldUsage::Direction, zone.direction, expected.direction) &&
         agrees(FieldUsage::Red, zone.color.red, expected.color.red) &&
         agrees(FieldUsage::Green, zone.color.green, expected.color.green) &&
         agrees(FieldUsage::Blue, zone.color.blue, expected.color.blue);
}

HidLights::Zone ExpectedZone(const ControllerRecords& records, std::size_t index) {
  const ModeRecord& mode = ActiveMode(records);
  const auto brightness = static_cast<std::uint8_t>(mode.brightness_setting);
  if (IsPerLed(mode)) return {kHidStatic, brightness, 0, 0, LightOf(records.color_table.at(index))};
  return {HidEffectCode(mode.hw_code), brightness, static_cast<std::uint8_t>(mode.speed_setting),
          DirectionCode(mode.direction_setting).value_or(0), LightOf(OwnColor(mode))};
}

/// Every keyboard gets every update, for as many zones as the one has that described itself.
bool HidKeyboardsShow(Notebook& notebook, const ControllerRecords& records) {
  bool reached = false;
  for (std::size_t i = 0; i < notebook.HidKeyboardCount(); ++i) {
    const HidKeyboard& keyboard = notebook.HidKeyboardAt(i);
    const HidKeyboard::Settings& settings = keyboard.settings();
    if (!IsServed(settings)) continue;
    if (!keyboard.Connect()) return false;
    reached = true;
    // One color for all zones is what a keyboard without a zone mask can be told.
    if (IsPerLed(ActiveMode(records)) && !Declares(settings, FieldUsage::ZoneMask)) continue;
    const HidLights lights = keyboard.Lights();
    const std::size_t zones = std::min({NamedZones(settings), lights.zones.size(), records.led_list.size()});
    // Nothing lit is nothing shown, unless there is nothing to light.
    if (zones == 0 && !lights.zones.empty()) return false;
    for (std::size_t zone = 0; zone < zones; ++zone) {
      if (!ZoneShows(settings, lights.zones[zone], ExpectedZone(records, zone))) return false;
    }
  }
  return reached;
}

struct DeviceLights {
  std::string_view device;
  /// What a complaint calls its lights.
  const char* name;
  bool (*shows)(Notebook&, const ControllerRecords&);
  bool lights_leds;
};
constexpr std::array kDeviceLights{DeviceLights{"ZarnECKeyboard", "keyboard", EcKeyboardShows, true},
                                   DeviceLights{"ZarnECGlobal", "light bar", EcGlobalShows, false},
                                   DeviceLights{"ZarnHIDKeyboard", "HID keyboard", HidKeyboardsShow, true}};

const DeviceLights& LightsOf(const std::string& device) {
  const auto* const found = std::ranges::find(kDeviceLights, device, &DeviceLights::device);
  if (found == kDeviceLights.end())
    throw Complaint(ExitCode::Failed, "the device " + device + " is not known to zarnctl");
  return *found;
}

std::string RefusalText(const simulator::WireRecord& record) {
  if (!record.hid_keyboard) return "the firmware refused " + record.method + ": " + record.refusal;
  return "HID keyboard " + std::to_string(*record.hid_keyboard + 1) + ", " + record.method + ": " + record.refusal;
}

std::vector<std::string> RefusalsIn(const std::vector<simulator::WireRecord>& wire) {
  std::vector<std::string> refusals;
  for (const simulator::WireRecord& record : wire) {
    if (record.refusal.empty()) continue;
    std::string text = RefusalText(record);
    if (std::ranges::count(refusals, text) == 0) refusals.push_back(std::move(text));  // attempts are repeated
  }
  return refusals;
}

}  // namespace

bool LightsLeds(const std::string& device) { return LightsOf(device).lights_leds; }

bool Shows(Notebook& notebook, const std::string& device, const ControllerRecords& records) {
  return LightsOf(device).shows(notebook, records);
}

std::vector<std::string> FindRefusals(Notebook& notebook) { return RefusalsIn(notebook.TakeWire()); }

std::vector<std::string> FindFaults(Notebook& notebook, const std::string& device, const ControllerRecords& records) {
  const std::vector<simulator::WireRecord> wire = notebook.TakeWire();
  std::vector<std::string> faults = RefusalsIn(wire);
  if (!faults.empty() || Shows(notebook, device, records)) return faults;
  const std::string failure =
      std::string("the ") + LightsOf(device).name + " does not show " + ActiveMode(records).label + " as asked";
  if (records.led_list.empty()) return {failure + ": its description has no LEDs"};
  if (wire.empty())
    return {failure + ": nothing reached it; does the profile have the firmware class, is it plugged in?"};
  std::string shown;
  for (const Panel& panel : PanelsOf(notebook)) shown += "; " + Headline(panel, records.mode_list);
  return {failure + shown};
}

bool Report(const std::vector<std::string>& faults) {
  std::for_each(faults.begin(), faults.end(), Complain);
  return !faults.empty();
}

}  // namespace zarnctl
