/// The exported factories of the HID keyboard.
///
/// Ownership and errors are those of the EC devices' factories. The list of lighting devices must have been built, by
/// discovery: otherwise the keyboard shows up without zones and effects.
#pragma once

#include "zarn_lighting/export.h"

class RGBControllerInterface;
class ZarnHIDKeyboardController;

extern "C" {

/// Asks the keyboard what it can do.
///
/// Waits for the keyboard, and for the lighting traffic of other threads: docs/hosts.md has the times.
ZARN_EXPORT ZarnHIDKeyboardController* CreateZarnHIDKeyboardControllerClassInstance();

/// The generic controller around `controller`; null for null. Destroyed through its virtual destructor.
ZARN_EXPORT RGBControllerInterface* CreateRGBController_ZarnHIDKeyboardClassInstance(
    ZarnHIDKeyboardController* controller);
}
