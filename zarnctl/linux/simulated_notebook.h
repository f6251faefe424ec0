/// A simulated notebook under the platform layer, in this process.
#pragma once

#include <memory>
#include <string>

#include "zarnctl/hardware.h"

namespace zarnctl {

/// Puts the notebook of a profile, given as a TOML file or as the name of a shipped profile, under the platform layer
/// for the rest of the process. With `trace` every firmware call and every HID report goes to stderr. Throws Complaint.
std::unique_ptr<Hardware> SimulateNotebook(const std::string& profile, bool trace);

}  // namespace zarnctl
