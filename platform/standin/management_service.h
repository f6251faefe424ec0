/// The management service of the machine in use, with its namespace "ROOT\WMI".
#pragma once

#include "platform/standin/wmi_api.h"

namespace platform {

/// The way to a connection with it. The caller gets its one reference. Throws std::bad_alloc.
IWbemLocator* NewLocator();

}  // namespace platform
