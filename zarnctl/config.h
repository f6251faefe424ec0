/// What is set for the plug-in, and where.
#pragma once

#include <string>
#include <vector>

#include "platform/portable/machine.h"

namespace zarnctl {

/// The switches and the log's folder as the machine has them, several lines. For this computer with its settings files
/// and what is wrong with them, each in a line of its own.
std::string ConfigOf(platform::Machine& machine, bool is_this_computer);

/// One line for each settings file of this computer that counts for nothing because something is wrong with it.
std::vector<std::string> ComplaintsAboutSettings();

}  // namespace zarnctl
