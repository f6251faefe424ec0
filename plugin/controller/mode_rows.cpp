#include "controller/mode_rows.h"

namespace {

std::uint32_t SourceOf(std::uint32_t capabilities) {
  if ((capabilities & ModeCapability::PerLedColors) != 0) return ColorSource::PerLedColors;
  if ((capabilities & ModeCapability::ModeColors) != 0) return ColorSource::ModeColors;
  return ColorSource::NoColors;
}

}  // namespace

ModeRecord MakeMode(const ModeRow& row, bool keeps_color) {
  ModeRecord mode;
  mode.label = row.label;
  mode.hw_code = row.hw_code;
  mode.capabilities = row.capabilities;
  mode.color_source = SourceOf(row.capabilities);
  if ((row.capabilities & ModeCapability::SpeedAdjustable) != 0) {
    mode.speed_lowest = 1;
    mode.speed_highest = 9;
    mode.speed_setting = 5;
  }
  if ((row.capabilities & ModeCapability::BrightnessAdjustable) != 0) {
    mode.brightness_highest = 100;
    mode.brightness_setting = 50;
  }
  if (keeps_color || mode.color_source == ColorSource::ModeColors) {
    mode.color_count_least = mode.color_count_most = 1;
    mode.mode_colors = {0};
  }
  return mode;
}

PackedColor EffectColor(const ModeRecord& mode) {
  const bool has_color = mode.color_source == ColorSource::ModeColors && !mode.mode_colors.empty();
  return has_color ? mode.mode_colors.front() : PackedColor{0};
}
