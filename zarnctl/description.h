/// A device's description, and the same in lines for people. Any thread.
#pragma once

#include <string>

#include "zarn_lighting/host.h"
#include "zarn_lighting/records.h"

namespace zarnctl {

/// What the device says of itself now, with an active mode and with ranges that are the right way up. Throws Complaint.
ControllerRecords Describe(const zarn::host::Device& device);

/// One line, without its end: "ZarnECKeyboard: Zarn EC Keyboard Device, 1 zone, 4 LEDs, 9 modes".
std::string Summary(const std::string& name, const ControllerRecords& records);

/// Everything, a line for each thing.
std::string Details(const std::string& name, const ControllerRecords& records);

}  // namespace zarnctl
