/// Why discovery reports something to light, or nothing.
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
  std::string answer = {};
  std::string remedy = {};  // empty when nothing is to be done
};

/// Looks at the log, the switches, the HID interfaces, the SMBIOS table and the firmware class, in this order, then
/// says what explains the discovery. Reads the attribute report of each lighting device that may be opened.
std::vector<Finding> Examine(const Symptoms& symptoms, const Remedies& remedies);

/// "missing  /dev/hidraw0: ...; plug it in again"
std::string LineOf(const Finding& finding);

}  // namespace zarnctl
