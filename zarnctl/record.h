/// What this machine is and answers, as a profile that plays it back: the way in which hardware that nobody has at hand
/// reaches the tests.
#pragma once

#include <string>

#include "platform/portable/machine.h"

namespace zarnctl {

/// The text of a profile, in TOML: the SMBIOS structure of type 172, the descriptors of lighting devices with their
/// answers to the reports that only ask, and the switches. Nothing that names a person, a place or a piece: no user, no
/// path, no serial number. Asks the machine itself; what cannot be had is left out, with a comment that says so.
std::string RecordOf(platform::Machine& machine);

}  // namespace zarnctl
