#include "ec/ec_factories.h"

#include "ec/ec_global_controller.h"
#include "ec/ec_global_device.h"
#include "ec/ec_keyboard_controller.h"
#include "ec/ec_keyboard_device.h"

ZarnECKeyboardController* CreateZarnECKeyboardControllerClassInstance() { return new ZarnECKeyboardController; }

RGBControllerInterface* CreateRGBController_ZarnECKeyboardClassInstance(ZarnECKeyboardController* controller) {
  return controller == nullptr ? nullptr : new RGBController_ZarnECKeyboard(controller);
}

ZarnECGlobalController* CreateZarnECGlobalControllerClassInstance() { return new ZarnECGlobalController; }

RGBControllerInterface* CreateRGBController_ZarnECGlobalClassInstance(ZarnECGlobalController* controller) {
  return controller == nullptr ? nullptr : new RGBController_ZarnECGlobal(controller);
}
