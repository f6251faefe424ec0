/// Lighting modes as tables of what distinguishes them. Pure; any thread.
#pragma once

#include <cstdint>

#include "zarn_lighting/records.h"

/// One mode. Its ranges, settings and colours follow from its capabilities: see MakeMode.
struct ModeRow {
  const char* label;
  std::int32_t hw_code;  // the device's code of the mode, or kPerLedModeCode
  std::uint32_t capabilities;
};

namespace ModeRows {
/// An effect with speed and brightness, and the same with a colour of its own.
inline constexpr std::uint32_t kEffect = ModeCapability::SpeedAdjustable | ModeCapability::BrightnessAdjustable;
inline constexpr std::uint32_t kColoredEffect = kEffect | ModeCapability::ModeColors;
}  // namespace ModeRows

/// Modes with speed run from 1 to 9, set to 5; modes with brightness from 0 to 100, set to 50. A mode that shows
/// colours of its own gets one, black; with `keeps_color` every mode does.
ModeRecord MakeMode(const ModeRow& row, bool keeps_color = false);

/// A mode's first colour when it shows colours of its own, else black.
PackedColor EffectColor(const ModeRecord& mode);
