/// What the keyboard's lights should be, and whether they are.
#pragma once

#include <string>
#include <vector>

#include "controller/records.h"
#include "simulator/notebook.h"

namespace zarnctl {

/// Whether `lights` are those of the active mode of a device that says `records` of itself.
bool Shows(const simulator::KeyboardLights& lights, const ControllerRecords& records);

/// One line for each firmware call since the last time that was refused; without any, one line when the lights
/// are not those of the active mode. Empty when all is well.
std::vector<std::string> FindFaults(simulator::Notebook& notebook, const ControllerRecords& records);

/// Prints `faults` to stderr; whether there were any.
bool Report(const std::vector<std::string>& faults);

}  // namespace zarnctl
