// What hosts call by position. Each class needs a use for which a compiler has to lay out its virtual table.
#include "discovery/lighting_plugin.h"
#include "ec/ec_keyboard_controller.h"
#include "hidkeyboard/hid_keyboard_controller.h"

void Destroy(RGBControllerInterface* controller);
void Destroy(RGBControllerInterface* controller) { delete controller; }

extern const auto kEcKeyboardSlot = &ZarnECKeyboardController::SetMode;
extern const auto kHidKeyboardSlot = &ZarnHIDKeyboardController::SetMode;
