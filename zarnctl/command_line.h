/// One run of zarnctl.
#pragma once

#include <string>
#include <vector>

#include "zarnctl/complaint.h"

namespace zarnctl {

/// Does what a command line asks for, given in UTF-8 without the program's name. Says on stdout what came of it, and on
/// stderr what was wrong. One at a time. The plug-in stays loaded.
ExitCode Run(std::vector<std::string> words);

}  // namespace zarnctl
