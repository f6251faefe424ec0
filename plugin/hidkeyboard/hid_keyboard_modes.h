/// The lighting modes of the HID keyboard.
#pragma once

#include <cstdint>
#include <vector>

#include "zarn_lighting/records.h"

/// The modes of a keyboard with these effects: "Direct" and "STATIC" always, the others where their bit is set.
std::vector<ModeRecord> MakeHidKeyboardModes(std::uint32_t effect_mask);
