/// This computer, as Linux shows it.
#pragma once

#include <memory>

#include "zarnctl/hardware.h"

namespace zarnctl {

/// With `trace` every firmware call and every HID report goes to stderr, a line each.
std::unique_ptr<Hardware> UseThisComputer(bool trace);

}  // namespace zarnctl
