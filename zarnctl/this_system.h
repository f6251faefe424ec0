/// What zarnctl has on this system alone. The build takes the folder linux/ or windows/.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zarnctl/command.h"
#include "zarnctl/hardware.h"

namespace zarnctl {

struct SystemFeatures {
  std::vector<Command> commands = {};
  std::vector<Parameter> options = {};
  std::string note = {};  // ends --help
};
SystemFeatures ThisSystem();

/// The hardware that the options name. May throw.
std::unique_ptr<Hardware> OpenHardware(const TypedValues& typed);

}  // namespace zarnctl
