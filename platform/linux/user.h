/// The user that runs the process: name, folders, environment.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// The folder that the environment variable names, if it names one from the root; otherwise `below_home` in the user's
/// home folder; nothing when that cannot be told.
std::optional<std::filesystem::path> UserFolder(const char* variable, const char* below_home);

/// The name of the user that runs the process, in UTF-8; nothing when it cannot be told.
std::optional<std::string> CurrentUser();

/// A variable of the process's environment. PROGRAMDATA, where the environment has none or one that is no path from the
/// root, is zarn in the user's folder for states ($XDG_STATE_HOME, or ~/.local/state).
std::optional<std::wstring> ProcessVariable(std::wstring_view name);

}  // namespace platform
