#include "hidkeyboard/hid_keyboard_factories.h"

#include "hidkeyboard/hid_keyboard_controller.h"
#include "hidkeyboard/hid_keyboard_device.h"

ZarnHIDKeyboardController* CreateZarnHIDKeyboardControllerClassInstance() { return new ZarnHIDKeyboardController; }

RGBControllerInterface* CreateRGBController_ZarnHIDKeyboardClassInstance(ZarnHIDKeyboardController* controller) {
  return controller == nullptr ? nullptr : new RGBController_ZarnHIDKeyboard(controller);
}
