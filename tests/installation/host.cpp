/// A host that has nothing but what is installed.

#include <dlfcn.h>

#include <cstdint>
#include <memory>

#include "discovery/lighting_plugin.h"

int main(int, char** arguments) {
  void* const library = dlopen(arguments[1], RTLD_NOW);
  if (library == nullptr) return 1;
  const auto create_controller = reinterpret_cast<decltype(&CreateZarnECKeyboardControllerClassInstance)>(
      dlsym(library, "CreateZarnECKeyboardControllerClassInstance"));
  const auto create_keyboard = reinterpret_cast<decltype(&CreateRGBController_ZarnECKeyboardClassInstance)>(
      dlsym(library, "CreateRGBController_ZarnECKeyboardClassInstance"));
  if (create_controller == nullptr || create_keyboard == nullptr) return 2;
  const std::unique_ptr<RGBControllerInterface> keyboard(create_keyboard(create_controller()));
  const std::unique_ptr<std::uint8_t[]> description(keyboard->PackDescription(3));
  return keyboard->CurrentModeIndex() == 0 && description[4] == DeviceKind::Keyboard ? 0 : 3;
}
