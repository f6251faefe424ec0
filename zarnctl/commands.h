/// The table of commands. A command's file is in commands/, or in linux/ when it needs our own platform layer.
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
std::vector<Parameter> WithModeOptions(std::vector<Parameter> words, bool mode_required);
Parameter LedColors(bool required);

// Results go to stdout. They throw Complaint.
ExitCode RunConfig(Session& session, const TypedValues& typed);
ExitCode RunDemo(Session& session, const TypedValues& typed);
ExitCode RunDevices(Session& session, const TypedValues& typed);
ExitCode RunDoctor(Session& session, const TypedValues& typed);
ExitCode RunLeds(Session& session, const TypedValues& typed);
ExitCode RunPicture(Session& session, const TypedValues& typed);  // in linux/ alone
ExitCode RunRecord(Session& session, const TypedValues& typed);   // in linux/ alone
ExitCode RunSet(Session& session, const TypedValues& typed);
ExitCode RunShow(Session& session, const TypedValues& typed);

}  // namespace zarnctl
