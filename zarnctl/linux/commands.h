/// The commands that need our own layer under the plug-in.
#pragma once

#include "zarnctl/command.h"

namespace zarnctl {

ExitCode RunPicture(Session& session, const TypedValues& typed);
ExitCode RunRecord(Session& session, const TypedValues& typed);

}  // namespace zarnctl
