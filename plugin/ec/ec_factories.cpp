#include "zarn_lighting/ec_factories.h"

#include "ec/rgb_controller_zarn_ec_global.h"
#include "ec/rgb_controller_zarn_ec_keyboard.h"
#include "ec/zarn_ec_global_controller.h"
#include "ec/zarn_ec_keyboard_controller.h"

ZarnECKeyboardController* CreateZarnECKeyboardControllerClassInstance() { return new ZarnECKeyboardController; }

RGBControllerInterface* CreateRGBController_ZarnECKeyboardClassInstance(ZarnECKeyboardController* controller) {
  return controller == nullptr ? nullptr : new RGBController_ZarnECKeyboard(controller);
}

ZarnECGlobalController* CreateZarnECGlobalControllerClassInstance() { return new ZarnECGlobalController; }

RGBControllerInterface* CreateRGBController_ZarnECGlobalClassInstance(ZarnECGlobalController* controller) {
  return controller == nullptr ? nullptr : new RGBController_ZarnECGlobal(controller);
}
