/// The demonstration: every mode of a device, driven through its worker as a service does.
#pragma once

#include <cstddef>
#include <string>

#include "zarn_lighting/host.h"
#include "zarnctl/complaint.h"
#include "zarnctl/hardware.h"

namespace zarnctl {

/// Walks through all modes of the device called `name`, and its colours per LED where it has any, and checks the lights
/// after each step; ends at the first step whose lights are not as expected. `animated_devices` counts
/// the devices that are shown on the terminal one after another, each step for a while, for all of them together less
/// than half a minute beside the hardware's own time; 0 when the steps are printed instead.
ExitCode RunDemo(zarn::host::Device& device, const std::string& name, Hardware& hardware, std::size_t animated_devices);

}  // namespace zarnctl
