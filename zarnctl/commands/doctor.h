/// Why there is something to light, or nothing: everything discovery depends on, asked one after the other.
#pragma once

#include <string>
#include <vector>

#include "zarnctl/symptoms.h"

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

/// The switches, the log, the HID interfaces, the SMBIOS table and the firmware class, in this order; then what of it
/// explains what was discovered. Asks the platform itself, and reads the attribute report of each lighting device that
/// may be opened.
std::vector<Finding> Examine(const Symptoms& symptoms, const Remedies& remedies);

/// "missing  /dev/hidraw0: ...; plug it in again"
std::string LineOf(const Finding& finding);

}  // namespace zarnctl
