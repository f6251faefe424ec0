/// What this machine is and answers, as a profile that plays it back: the way in which hardware that nobody has at hand
/// reaches the tests.
#pragma once

#include <string>
#include <vector>

namespace platform {
class Machine;
}

namespace zarnctl {

/// A profile in TOML, and a line for each thing that it lacks because it could not be had.
struct Recording {
  std::string profile;
  std::vector<std::string> omissions;
};

/// The SMBIOS structure of type 172, the firmware's answer about its light bar, the descriptors of lighting devices
/// with their answers to the reports that only ask, and the switches. Nothing that names a person, a place or a piece:
/// no user, no path, no serial number, and of no answer more than the plug-in understands. Asks the machine itself.
/// Throws Complaint when the profile could not be played back.
Recording Record(platform::Machine& machine);

}  // namespace zarnctl
