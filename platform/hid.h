/// The door to HID devices: their enumeration, their capabilities, feature reports, and the handles they are used by.
#pragma once

#if defined(_WIN32)

#include "platform/windows.h"

// After the main header, which they need.
#include <setupapi.h>

extern "C" {
#include <hidsdi.h>  // brings hidpi.h in, which does not stand alone
}

#else

#include "platform/portable/hid_api.h"

#endif
