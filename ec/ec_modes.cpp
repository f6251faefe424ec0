#include "ec/ec_modes.h"

namespace {

std::uint32_t SourceOf(std::uint32_t capabilities) {
  if ((capabilities & ModeCapability::PerLedColors) != 0) return ColorSource::PerLedColors;
  if ((capabilities & ModeCapability::ModeColors) != 0) return ColorSource::ModeColors;
  return ColorSource::NoColors;
}

ModeRecord MakeMode(const EcModeRow& row) {
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
  if (mode.color_source == ColorSource::ModeColors) {
    mode.color_count_least = 1;
    mode.color_count_most = 1;
    mode.mode_colors = {0};
  }
  return mode;
}

}  // namespace

std::vector<ModeRecord> MakeModes(std::span<const EcModeRow> rows) {
  std::vector<ModeRecord> modes;
  modes.reserve(rows.size());
  for (const EcModeRow& row : rows) modes.push_back(MakeMode(row));
  return modes;
}

PackedColor EffectColor(const ModeRecord& mode) {
  const bool has_color = mode.color_source == ColorSource::ModeColors && !mode.mode_colors.empty();
  return has_color ? mode.mode_colors.front() : PackedColor{0};
}
