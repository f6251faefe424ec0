/// The notebook that stands under the plug-in.
#pragma once

#include <memory>
#include <string>

#include "simulator/notebook.h"

namespace zarnctl {

/// Puts the notebook of a profile, given as a TOML file or as the name of a shipped profile, under the platform layer
/// for the rest of the process. Throws Complaint; for an empty `machine` too, since this computer has no lighting to
/// drive.
std::shared_ptr<simulator::Notebook> OpenNotebook(const std::string& machine);

/// Prints every firmware call and every HID report to stderr, one line each, from now on.
void TraceExchanges();

}  // namespace zarnctl
