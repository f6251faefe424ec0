/// The plug-in's switches, in words.
#pragma once

#include <string>

#include "log/service_switch.h"

namespace zarnctl {

/// "on", "off, not set", "off, set to 2 (1 turns it on)"
std::string StateOf(const ServiceSwitch& service_switch);

}  // namespace zarnctl
