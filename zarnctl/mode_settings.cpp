#include "zarnctl/mode_settings.h"

#include <algorithm>
#include <array>

#include "zarnctl/complaint.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

bool Has(const ModeRecord& mode, std::uint32_t capability) { return (mode.capabilities & capability) != 0; }

struct RangedSetting {
  const char* option;
  std::uint32_t capability;
  std::uint32_t ModeRecord::*lowest;
  std::uint32_t ModeRecord::*highest;
  std::uint32_t ModeRecord::*value;
};
constexpr std::array kSettings{
    RangedSetting{"--speed", ModeCapability::SpeedAdjustable, &ModeRecord::speed_lowest, &ModeRecord::speed_highest,
                  &ModeRecord::speed_setting},
    RangedSetting{"--brightness", ModeCapability::BrightnessAdjustable, &ModeRecord::brightness_lowest,
                  &ModeRecord::brightness_highest, &ModeRecord::brightness_setting}};

void Apply(ModeRecord& mode, const RangedSetting& setting, const std::string& word) {
  const std::string option = setting.option;
  if (!Has(mode, setting.capability)) throw Wrong(option + ": " + mode.label + " has no " + option.substr(2));
  const std::uint32_t wanted = ReadNumber(option, word);
  if (wanted < mode.*setting.lowest || wanted > mode.*setting.highest) {
    throw Wrong(option + " " + std::to_string(wanted) + ": " + mode.label + " takes " +
                std::to_string(mode.*setting.lowest) + " to " + std::to_string(mode.*setting.highest));
  }
  mode.*setting.value = wanted;
}

void ApplyDirection(ModeRecord& mode, const std::string& word) {
  const std::vector<std::uint32_t> allowed = DirectionsOf(mode);
  if (allowed.empty()) throw Wrong("--direction: " + mode.label + " has no direction");
  const std::uint32_t wanted = ReadNumber("--direction", word);
  if (std::ranges::count(allowed, wanted) == 0) {
    std::vector<std::string> names;
    names.reserve(allowed.size());
    for (const std::uint32_t direction : allowed) names.push_back(std::to_string(direction));
    throw Wrong("--direction " + std::to_string(wanted) + ": " + mode.label + " takes " + Alternatives(names));
  }
  mode.direction_setting = wanted;
}

void ApplyColor(ModeRecord& mode, const std::string& word) {
  if (mode.color_source == ColorSource::PerLedColors) {
    throw Wrong("--color: " + mode.label + " shows a colour per LED; use 'zarnctl leds'");
  }
  if (mode.color_source != ColorSource::ModeColors || mode.color_count_most == 0) {
    throw Wrong("--color: " + mode.label + " shows no colour of its own");
  }
  mode.mode_colors.assign(std::max<std::size_t>(1, mode.color_count_least), ReadColor("--color", word));
}

}  // namespace

std::int32_t FindMode(const std::vector<ModeRecord>& modes, const std::string& name) {
  std::vector<std::string> names;
  for (const ModeRecord& mode : modes) {
    if (EqualWithoutCase(mode.label, name)) return static_cast<std::int32_t>(names.size());
    names.push_back(mode.label);
  }
  throw Wrong("--mode " + name + ": the modes are " + Alternatives(names));
}

std::int32_t FindPerLedMode(const std::vector<ModeRecord>& modes) {
  const auto found = std::ranges::find(modes, ColorSource::PerLedColors, &ModeRecord::color_source);
  if (found == modes.end()) throw Wrong("leds: the device has no mode that shows a colour per LED");
  return static_cast<std::int32_t>(found - modes.begin());
}

ModeRecord WithSettings(ModeRecord mode, const TypedValues& typed) {
  for (const RangedSetting& setting : kSettings) {
    if (const std::string* const word = typed.Find(setting.option)) Apply(mode, setting, *word);
  }
  if (const std::string* const word = typed.Find("--direction")) ApplyDirection(mode, *word);
  if (const std::string* const word = typed.Find("--color")) ApplyColor(mode, *word);
  return mode;
}

std::vector<std::uint32_t> DirectionsOf(const ModeRecord& mode) {
  std::vector<std::uint32_t> directions;
  std::uint32_t first = 0;  // of two directions in each set
  for (const auto set : {ModeCapability::DirectionSetA, ModeCapability::DirectionSetB, ModeCapability::DirectionSetC}) {
    if (Has(mode, set)) directions.insert(directions.end(), {first, first + 1});
    first += 2;
  }
  return directions;
}

std::vector<PackedColor> ColorPerLed(const std::vector<PackedColor>& colors, std::size_t led_total) {
  if (led_total == 0) throw Wrong("leds: the device has no LEDs");
  std::vector<PackedColor> all(led_total, colors.front());
  if (colors.size() == 1) return all;
  if (colors.size() == led_total) return colors;
  throw Wrong("leds: " + Counted(colors.size(), "colour") + " given; give one for all, or " +
              std::to_string(led_total) + ", one for each LED");
}

}  // namespace zarnctl
