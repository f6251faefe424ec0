/// The lighting modes of the HID keyboard.
#pragma once

#include <cstdint>
#include <vector>

#include "zarn_lighting/records.h"

/// The keyboard's own code of its static effect.
inline constexpr std::uint8_t kStaticDeviceMode = 2;

/// The modes of a keyboard with these effects: "Direct" and "STATIC" always, the others where their bit is set.
std::vector<ModeRecord> MakeHidKeyboardModes(std::uint32_t effect_mask);

/// The keyboard's own code for a mode's `hw_code`; for a code without a row, its low 8 bits.
std::uint8_t DeviceCodeOf(std::uint32_t hw_code);
