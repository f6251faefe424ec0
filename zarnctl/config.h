/// What is set for the plug-in, and where.
#pragma once

#include <string>
#include <vector>

namespace zarnctl {

/// The switches and the log's folder, several lines.
std::string Config();

/// Where this computer has the switches, with what is wrong or not known there, and how to turn them on; several lines.
std::string SettingsPlaces();

/// One line for each place of this computer's that counts for nothing because something is wrong with it.
std::vector<std::string> ComplaintsAboutSettings();

}  // namespace zarnctl
