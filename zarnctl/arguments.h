/// The command line, as values.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "zarn_lighting/records.h"
#include "zarnctl/mode_settings.h"

namespace zarnctl {

struct DevicesCommand {};
struct ShowCommand {
  std::string device;
};
struct SetCommand {
  std::string device;
  ModeSettings settings;
};
struct LedsCommand {
  std::string device;
  std::vector<PackedColor> colors;
};
struct DemoCommand {};
struct DoctorCommand {};
struct ConfigCommand {};
struct RecordCommand {
  std::filesystem::path file;
};

using Command = std::variant<DevicesCommand, ShowCommand, SetCommand, LedsCommand, DemoCommand, DoctorCommand,
                             ConfigCommand, RecordCommand>;

struct Arguments {
  std::string machine;  // empty: this computer
  std::filesystem::path plugin;
  bool trace = false;
  Command command;
};

/// Reads the words behind the program's name, in UTF-8. Nothing when --help or --version was all that was asked for,
/// and has been answered. Throws Complaint.
std::optional<Arguments> ReadArguments(std::vector<std::string> words);

}  // namespace zarnctl
