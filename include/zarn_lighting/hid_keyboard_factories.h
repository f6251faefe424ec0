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
/// Times: an exchange E is what the system takes for one feature report, at worst its time limit. For each device that
/// serves the keyboard this takes up to 5 x (2 E + 40 ms); an update up to 5 x (E + 20 ms) and so do slots 29 and 30 of
/// the generic controller; slot 27, and with it slot 28 and the per-LED mode, up to 16 times an update and 20 ms more
/// each. Lighting traffic of the whole process is serialised, so each also waits for what is under way. The destructor
/// waits for the worker to finish a mode push and a colour push. docs/architecture.md has the figures.
ZARN_EXPORT ZarnHIDKeyboardController* CreateZarnHIDKeyboardControllerClassInstance();

/// The generic controller around `controller`; null for null. Destroyed through its virtual destructor.
ZARN_EXPORT RGBControllerInterface* CreateRGBController_ZarnHIDKeyboardClassInstance(
    ZarnHIDKeyboardController* controller);
}
