/// What the lighting modes of the EC devices have in common.
#pragma once

#include <cstdint>
#include <vector>

#include "controller/mode_rows.h"

/// "STATIC", which the two EC devices carry out in different ways.
inline constexpr std::int32_t kStaticEffect = 0;

/// The per-LED mode and the eight effects that the firmware knows. The EC devices differ in what two of them can do.
std::vector<ModeRecord> MakeEcModes(std::uint32_t direct_capabilities, std::uint32_t wave_capabilities);

/// The firmware's direction byte for a mode's direction setting, of which the low 16 bits count.
constexpr std::uint16_t ToFirmwareDirection(std::uint32_t direction_setting) {
  const auto direction = static_cast<std::uint16_t>(direction_setting);
  if (direction == 0) return 2;
  if (direction == 1) return 1;
  return static_cast<std::uint16_t>(direction + 1);
}

/// Has the firmware run a mode that is one of its effects.
template <typename Controller>
void RunEffect(Controller& controller, const ModeRecord& mode) {
  const PackedColor color = EffectColor(mode);
  controller.SetMode(static_cast<std::uint8_t>(mode.hw_code), static_cast<std::uint16_t>(mode.speed_setting),
                     ToFirmwareDirection(mode.direction_setting), static_cast<std::uint16_t>(mode.brightness_setting),
                     RedOf(color), GreenOf(color), BlueOf(color));
}
