/// The exported factories of the EC lighting devices.
///
/// Ownership: the host owns what a factory returns. Once the second factory has returned, the generic controller owns
/// the device controller and destroys it with itself. When the second factory throws, the host still owns the device
/// controller and can hand it in again; no export frees it. Errors: std::bad_alloc, and std::system_error when the
/// worker thread cannot be started. Build hosts with /EHs: under /EHsc Microsoft's compiler assumes that these
/// functions throw nothing. Any thread may call.
#pragma once

#include "zarn_lighting/export.h"

class RGBControllerInterface;
class ZarnECGlobalController;
class ZarnECKeyboardController;

extern "C" {

/// Reads the firmware's record of the EC keyboard. May take as long as the management service does.
ZARN_EXPORT ZarnECKeyboardController* CreateZarnECKeyboardControllerClassInstance();
/// The generic controller around `controller`; null for null. Destroyed through its virtual destructor.
ZARN_EXPORT RGBControllerInterface* CreateRGBController_ZarnECKeyboardClassInstance(
    ZarnECKeyboardController* controller);

/// The same pair for the whole-device light.
ZARN_EXPORT ZarnECGlobalController* CreateZarnECGlobalControllerClassInstance();
ZARN_EXPORT RGBControllerInterface* CreateRGBController_ZarnECGlobalClassInstance(ZarnECGlobalController* controller);
}
