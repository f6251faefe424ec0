/// What is set for the plug-in, and where.
#pragma once

#include <string>
#include <vector>

namespace zarnctl {

/// The switches and the log's folder, several lines.
std::string Config();

/// The settings files of this computer, a line each, with what is wrong with them or not known, and what to write
/// there.
std::string SettingsFiles();

/// One line for each settings file of this computer that counts for nothing because something is wrong with it.
std::vector<std::string> ComplaintsAboutSettings();

}  // namespace zarnctl
