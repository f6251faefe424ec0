/// Checks what a person asked for against a device's description, before anything is sent.
///
/// Pure functions; any thread. They throw Complaint, which tells what is allowed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "zarn_lighting/records.h"
#include "zarnctl/command.h"

namespace zarnctl {

/// The position in `modes` of the mode called `name`, in any case.
std::int32_t FindMode(const std::vector<ModeRecord>& modes, const std::string& name);
/// The position in `modes` of the mode that shows a colour per LED.
std::int32_t FindPerLedMode(const std::vector<ModeRecord>& modes);

/// `mode` with what was typed for --speed, --brightness, --direction and --color; the rest stays as it is.
ModeRecord WithSettings(ModeRecord mode, const TypedValues& typed);

/// The values that `direction_setting` may take, ascending. Does not throw Complaint.
std::vector<std::uint32_t> DirectionsOf(const ModeRecord& mode);

/// A colour for each of `led_total` LEDs. `colors` holds as many, or one for all.
std::vector<PackedColor> ColorPerLed(const std::vector<PackedColor>& colors, std::size_t led_total);

}  // namespace zarnctl
