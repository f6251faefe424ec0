/// One run of zarnctl.
#pragma once

#include <string>
#include <vector>

#include "zarnctl/complaint.h"

namespace zarnctl {

/// Runs a command line, in UTF-8 without the program's name. Results go to stdout, complaints to stderr. One at a time.
/// The plug-in stays loaded.
ExitCode Run(std::vector<std::string> words);

}  // namespace zarnctl
