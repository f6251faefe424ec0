/// The demonstration: every mode of a device, driven through its worker as a service does.
#pragma once

#include <cstddef>
#include <string>

#include "simulator/notebook.h"
#include "zarnctl/complaint.h"
#include "zarnctl/device.h"

namespace zarnctl {

/// Walks through all modes of the device called `name`, and its colours per LED where it has any, and checks the lights
/// after each step; ends at the first step whose lights are not as expected. When it is one of `animated` devices, of
/// which 0 means none, each step is shown on the terminal for a while, for all devices together less than half a minute
/// beside the hardware's own time.
ExitCode RunDemo(Device& device, const std::string& name, simulator::Notebook& notebook, std::size_t animated);

}  // namespace zarnctl
