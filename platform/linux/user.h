/// The user that runs the process: name and folders.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace platform {

/// The folder that the environment variable names by a path from the root in UTF-8. Without one, `below_home` in the
/// user's home folder; nothing when that cannot be told.
std::optional<std::filesystem::path> UserFolder(const char* variable, const char* below_home);

/// The name of the user that runs the process, in UTF-8; nothing when it cannot be told.
std::optional<std::string> CurrentUser();

}  // namespace platform
