/// Why there is something to light, or nothing: everything discovery depends on, asked one after the other.
#pragma once

#include <string>
#include <vector>

#include "platform/portable/machine.h"

namespace zarnctl {

/// One question and its answer.
struct Finding {
  enum class Kind {
    Fine,
    Note,    // nothing is wrong, but it is good to know
    Missing  // something cannot be lit for this reason
  };
  Kind kind = Kind::Fine;
  std::string answer;
  std::string remedy;  // empty when nothing is to be done
};

/// The switches, the HID devices, the SMBIOS table and the firmware class, in this order. Asks the machine itself, and
/// reads the attribute report of each lighting device that it may open.
std::vector<Finding> Examine(platform::Machine& machine);

/// "missing  /dev/hidraw0: ...; plug it in again"
std::string LineOf(const Finding& finding);

}  // namespace zarnctl
