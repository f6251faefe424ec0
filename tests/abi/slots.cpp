// What hosts call by position. Each class needs a use for which a compiler has to lay out its virtual table.
#include "ec/zarn_ec_keyboard_controller.h"
#include "hidkeyboard/zarn_hid_keyboard_controller.h"
#include "zarn_lighting/plugin.h"

void Destroy(RGBControllerInterface* controller);
void Destroy(RGBControllerInterface* controller) { delete controller; }

extern const auto kEcKeyboardSlot = &ZarnECKeyboardController::SetMode;
extern const auto kHidKeyboardSlot = &ZarnHIDKeyboardController::SetMode;
