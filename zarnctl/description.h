/// A device's description in lines for people. Pure functions; any thread.
#pragma once

#include <string>

#include "controller/records.h"

namespace zarnctl {

/// One line, without its end: "ZarnECKeyboard: Zarn EC Keyboard Device, 1 zone, 4 LEDs, 9 modes".
std::string Summary(const std::string& name, const ControllerRecords& records);

/// Everything, a line for each thing.
std::string Details(const std::string& name, const ControllerRecords& records);

}  // namespace zarnctl
