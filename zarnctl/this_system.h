/// What zarnctl is on one system beside what it is on all of them. Each system has its own; the build chooses.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zarnctl/command.h"
#include "zarnctl/hardware.h"

namespace zarnctl {

struct SystemFeatures {
  std::vector<Command> commands;
  std::vector<Parameter> options;
  std::string note;  // ends --help
};
SystemFeatures ThisSystem();

/// The hardware that the options name. Throws Complaint.
std::unique_ptr<Hardware> OpenHardware(const TypedValues& typed);

}  // namespace zarnctl
