/// A device's description, and lines for people made from it. Any thread.
#pragma once

#include <string>

#include "zarn_lighting/host.h"
#include "zarn_lighting/records.h"

namespace zarnctl {

/// The description as of now. Throws Complaint when it has no active mode, or a range whose lowest exceeds its highest.
ControllerRecords Describe(const zarn::host::Device& device);

/// One line, without its end: "ZarnECKeyboard: Zarn EC Keyboard Device, 1 zone, 4 LEDs, 9 modes".
std::string Summary(const std::string& name, const ControllerRecords& records);

/// Everything, in lines.
std::string Details(const std::string& name, const ControllerRecords& records);

}  // namespace zarnctl
