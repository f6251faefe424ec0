#include "zarn_lighting/hid_keyboard_factories.h"

#include "hidkeyboard/rgb_controller_zarn_hid_keyboard.h"
#include "hidkeyboard/zarn_hid_keyboard_controller.h"

ZarnHIDKeyboardController* CreateZarnHIDKeyboardControllerClassInstance() { return new ZarnHIDKeyboardController; }

RGBControllerInterface* CreateRGBController_ZarnHIDKeyboardClassInstance(ZarnHIDKeyboardController* controller) {
  return controller == nullptr ? nullptr : new RGBController_ZarnHIDKeyboard(controller);
}
