/// The demonstration: every mode of a device, driven through its worker as a service does.
#pragma once

#include "simulator/notebook.h"
#include "zarnctl/complaint.h"
#include "zarnctl/device.h"

namespace zarnctl {

/// Walks through all modes and the per-LED colours, and checks the lights after each step; ends at the first step
/// whose lights are not as expected. When `animated`, each step is shown on the terminal for a while, all in all
/// less than half a minute beside the firmware's own time.
ExitCode RunDemo(Device& device, simulator::Notebook& notebook, bool animated);

}  // namespace zarnctl
