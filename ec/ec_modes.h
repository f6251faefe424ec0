/// The lighting modes of the EC devices, as tables of what distinguishes them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "controller/records.h"

/// One mode. Its ranges, settings and colours follow from its capabilities: see MakeModes.
struct EcModeRow {
  const char* label;
  std::int32_t hw_code;  // the firmware's effect code, or kPerLedModeCode
  std::uint32_t capabilities;
};

/// "STATIC", which each EC device brings to the lights in its own way.
inline constexpr std::int32_t kStaticEffect = 0;

/// Modes with speed run from 1 to 9, set to 5; modes with brightness from 0 to 100, set to 50; modes with colours of
/// their own have one, black.
std::vector<ModeRecord> MakeModes(std::span<const EcModeRow> rows);

/// A mode's first colour when it shows colours of its own, else black.
PackedColor EffectColor(const ModeRecord& mode);

/// The firmware's direction byte for a mode's direction setting, of which the low 16 bits count.
constexpr std::uint16_t ToFirmwareDirection(std::uint32_t direction_setting) {
  const auto direction = static_cast<std::uint16_t>(direction_setting);
  if (direction == 0) return 2;
  if (direction == 1) return 1;
  return static_cast<std::uint16_t>(direction + 1);
}
