/// The door to HID devices: their enumeration, their capabilities, feature reports, and the handles they are used by.
#pragma once

#if defined(_WIN32)

#include "platform/windows.h"

// These need the main header first. The macro declares the functions without dllimport, so that tests can define them.
#define _SETUPAPI_  // NOLINT(bugprone-reserved-identifier): the header's own
#include <setupapi.h>

extern "C" {
#include <hidsdi.h>  // brings hidpi.h in, which does not stand alone
}

#undef interface  // a macro of COM's headers for what is a name here

#else

#include "platform/standin/hid_api.h"

#endif
