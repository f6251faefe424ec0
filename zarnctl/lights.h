/// What the lights of a device should be, and whether they are.
///
/// `device` is a name by which discovery reports it; Complaint is thrown for one that is not known here.
#pragma once

#include <string>
#include <vector>

#include "simulator/notebook.h"
#include "zarn_lighting/records.h"

namespace zarnctl {

/// Whether the device brings the colours of its LEDs to any light.
bool LightsLeds(const std::string& device);

/// Whether what the device lights shows its active mode, where it says `records` of itself. On a HID keyboard as far as
/// its updates have fields for it, and on as many of the first 16 zones as the device has LEDs.
bool Shows(simulator::Notebook& notebook, const std::string& device, const ControllerRecords& records);

/// One line for each way in which the firmware or a HID keyboard refused what it got since the last time.
std::vector<std::string> FindRefusals(simulator::Notebook& notebook);

/// The refusals; without any, one line when the lights are not those of the active mode. Empty when all is well.
std::vector<std::string> FindFaults(simulator::Notebook& notebook, const std::string& device,
                                    const ControllerRecords& records);

/// Prints `faults` to stderr; whether there were any.
bool Report(const std::vector<std::string>& faults);

}  // namespace zarnctl
