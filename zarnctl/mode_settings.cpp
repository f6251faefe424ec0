#include "zarnctl/mode_settings.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "zarnctl/complaint.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

struct DirectionPair {
  std::uint32_t capability;
  std::uint32_t first;
};
constexpr std::array kDirectionPairs{DirectionPair{ModeCapability::DirectionSetA, 0},
                                     DirectionPair{ModeCapability::DirectionSetB, 2},
                                     DirectionPair{ModeCapability::DirectionSetC, 4}};

Complaint Wrong(const std::string& line) { return {ExitCode::WrongCommandLine, line}; }

bool Has(const ModeRecord& mode, std::uint32_t capability) { return (mode.capabilities & capability) != 0; }

struct Range {
  std::string_view option;  // "--speed"
  std::string_view noun;    // "speed"
  std::uint32_t capability;
  std::uint32_t lowest;
  std::uint32_t highest;
};

void Apply(const ModeRecord& mode, const Range& range, std::optional<std::uint32_t> wanted, std::uint32_t& setting) {
  if (!wanted) return;
  const std::string option(range.option);
  if (!Has(mode, range.capability)) throw Wrong(option + ": " + mode.label + " has no " + std::string(range.noun));
  if (*wanted < range.lowest || *wanted > range.highest) {
    throw Wrong(option + " " + std::to_string(*wanted) + ": " + mode.label + " takes " + std::to_string(range.lowest) +
                " to " + std::to_string(range.highest));
  }
  setting = *wanted;
}

void ApplyDirection(ModeRecord& mode, std::optional<std::uint32_t> wanted) {
  if (!wanted) return;
  const std::vector<std::uint32_t> allowed = DirectionsOf(mode);
  if (allowed.empty()) throw Wrong("--direction: " + mode.label + " has no direction");
  if (std::find(allowed.begin(), allowed.end(), *wanted) == allowed.end()) {
    std::vector<std::string> names;
    std::transform(allowed.begin(), allowed.end(), std::back_inserter(names),
                   [](std::uint32_t direction) { return std::to_string(direction); });
    throw Wrong("--direction " + std::to_string(*wanted) + ": " + mode.label + " takes " + Alternatives(names));
  }
  mode.direction_setting = *wanted;
}

void ApplyColor(ModeRecord& mode, std::optional<PackedColor> wanted) {
  if (!wanted) return;
  if (mode.color_source == ColorSource::PerLedColors) {
    throw Wrong("--color: " + mode.label + " shows a colour per LED; use 'zarnctl leds'");
  }
  if (mode.color_source != ColorSource::ModeColors || mode.color_count_most == 0) {
    throw Wrong("--color: " + mode.label + " shows no colour of its own");
  }
  mode.mode_colors.assign(std::max<std::size_t>(1, mode.color_count_least), *wanted);
}

std::optional<std::uint32_t> ReadSetting(const TypedValues& typed, std::string_view option) {
  const std::string* const word = typed.Find(option);
  return word != nullptr ? std::optional(ReadNumber(option, *word)) : std::nullopt;
}

}  // namespace

ModeSettings ReadModeSettings(const TypedValues& typed) {
  const std::string* const color = typed.Find("--color");
  return {.speed = ReadSetting(typed, "--speed"),
          .brightness = ReadSetting(typed, "--brightness"),
          .direction = ReadSetting(typed, "--direction"),
          .color = color != nullptr ? std::optional(ReadColor("--color", *color)) : std::nullopt};
}

std::int32_t FindMode(const std::vector<ModeRecord>& modes, const std::string& name) {
  const auto found = std::find_if(modes.begin(), modes.end(),
                                  [&](const ModeRecord& mode) { return EqualWithoutCase(mode.label, name); });
  if (found != modes.end()) return static_cast<std::int32_t>(found - modes.begin());
  std::vector<std::string> names;
  std::transform(modes.begin(), modes.end(), std::back_inserter(names),
                 [](const ModeRecord& mode) { return mode.label; });
  throw Wrong("--mode " + name + ": the modes are " + Alternatives(names));
}

std::int32_t FindPerLedMode(const std::vector<ModeRecord>& modes) {
  const auto found = std::find_if(modes.begin(), modes.end(), [](const ModeRecord& mode) {
    return mode.color_source == ColorSource::PerLedColors;
  });
  if (found == modes.end()) throw Wrong("leds: the device has no mode that shows a colour per LED");
  return static_cast<std::int32_t>(found - modes.begin());
}

ModeRecord WithSettings(ModeRecord mode, const ModeSettings& settings) {
  const Range speed{"--speed", "speed", ModeCapability::SpeedAdjustable, mode.speed_lowest, mode.speed_highest};
  const Range brightness{"--brightness", "brightness", ModeCapability::BrightnessAdjustable, mode.brightness_lowest,
                         mode.brightness_highest};
  Apply(mode, speed, settings.speed, mode.speed_setting);
  Apply(mode, brightness, settings.brightness, mode.brightness_setting);
  ApplyDirection(mode, settings.direction);
  ApplyColor(mode, settings.color);
  return mode;
}

std::vector<std::uint32_t> DirectionsOf(const ModeRecord& mode) {
  std::vector<std::uint32_t> directions;
  for (const DirectionPair& pair : kDirectionPairs) {
    if (!Has(mode, pair.capability)) continue;
    directions.push_back(pair.first);
    directions.push_back(pair.first + 1);
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
