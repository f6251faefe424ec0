/// The table of commands. Each command is one file in commands/, or in the folder of the one system that has it.
#pragma once

#include <vector>

#include "zarnctl/command.h"

namespace zarnctl {

/// All commands that zarnctl has on this system.
std::vector<Command> Commands();
/// The options that every command takes.
std::vector<Parameter> GeneralOptions();

// What several commands take.
Parameter DeviceWord(bool required);
std::vector<Parameter> ModeOptions(bool mode_required);
Parameter LedColors(bool required);

// They say on stdout what came of them. They throw Complaint.
ExitCode RunConfig(Session& session, const TypedValues& typed);
ExitCode RunDemo(Session& session, const TypedValues& typed);
ExitCode RunDevices(Session& session, const TypedValues& typed);
ExitCode RunDoctor(Session& session, const TypedValues& typed);
ExitCode RunLeds(Session& session, const TypedValues& typed);
ExitCode RunSet(Session& session, const TypedValues& typed);
ExitCode RunShow(Session& session, const TypedValues& typed);

}  // namespace zarnctl
