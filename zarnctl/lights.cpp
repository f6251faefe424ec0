#include "zarnctl/lights.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "zarnctl/complaint.h"
#include "zarnctl/drawing.h"

namespace zarnctl {
namespace {

using simulator::KeyboardLights;

simulator::Color LightOf(PackedColor color) { return {RedOf(color), GreenOf(color), BlueOf(color)}; }

PackedColor OwnColor(const ModeRecord& mode) {
  return mode.color_source == ColorSource::ModeColors && !mode.mode_colors.empty() ? mode.mode_colors.front() : 0;
}

/// By direction setting: the firmware counts from 1, with the first two changed over. Written down here once more,
/// because a check that asked the plug-in would find it right in any case.
constexpr std::array<std::uint8_t, 6> kFirmwareDirections{2, 1, 3, 4, 5, 6};

bool ShowsEffect(const KeyboardLights& lights, const ModeRecord& mode) {
  if (mode.direction_setting >= kFirmwareDirections.size()) return false;
  const simulator::Effect expected{.code = static_cast<std::uint8_t>(mode.hw_code),
                                   .speed = static_cast<std::uint8_t>(mode.speed_setting),
                                   .direction = kFirmwareDirections.at(mode.direction_setting),
                                   .color = LightOf(OwnColor(mode))};
  return lights.effect == expected;
}

bool ShowsZones(const KeyboardLights& lights, const std::vector<PackedColor>& colors) {
  const auto shows = [](const KeyboardLights::Zone& zone, PackedColor color) {
    return color == 0 ? !zone.on : zone.on && zone.color == LightOf(color);
  };
  return !lights.effect && std::equal(lights.zones.begin(), lights.zones.end(), colors.begin(), colors.end(), shows);
}

/// Modes that are no effects of the firmware show as the zones' own colours.
bool IsEffect(const ModeRecord& mode) { return mode.hw_code != 0 && mode.hw_code != kPerLedModeCode; }

}  // namespace

bool Shows(const KeyboardLights& lights, const ControllerRecords& records) {
  const ModeRecord& mode = records.mode_list.at(static_cast<std::size_t>(records.current_mode));
  if (lights.brightness != mode.brightness_setting) return false;
  if (IsEffect(mode)) return ShowsEffect(lights, mode);
  if (mode.color_source == ColorSource::PerLedColors) return ShowsZones(lights, records.color_table);
  return ShowsZones(lights, std::vector<PackedColor>(lights.zones.size(), OwnColor(mode)));
}

std::vector<std::string> FindFaults(simulator::Notebook& notebook, const ControllerRecords& records) {
  std::vector<std::string> faults;
  const std::vector<simulator::WireRecord> wire = notebook.TakeWire();
  for (const simulator::WireRecord& record : wire) {
    if (!record.refusal.empty()) {
      faults.push_back("the firmware refused " + record.method + ": " + record.refusal);
    }
  }
  if (!faults.empty() || Shows(notebook.Lights(), records)) return faults;
  const ModeRecord& mode = records.mode_list.at(static_cast<std::size_t>(records.current_mode));
  return {"the keyboard does not show " + mode.label + " as asked" +
          (wire.empty() ? ": no call reached the firmware; does the profile have the firmware class?"
                        : "; " + Headline(notebook.Lights(), records.mode_list))};
}

bool Report(const std::vector<std::string>& faults) {
  std::for_each(faults.begin(), faults.end(), Complain);
  return !faults.empty();
}

}  // namespace zarnctl
