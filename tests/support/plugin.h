/// The plug-in as a host has it: loaded, its exports found by name, its controllers' slots called by position.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "controller/rgb_controller_interface.h"

class ZarnECKeyboardController;

namespace test {

class Plugin {
 public:
  explicit Plugin(const char* path = ZARN_LIGHTING_PATH) : library_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    if (library_ == nullptr) ADD_FAILURE() << dlerror();
  }
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  ~Plugin() { dlclose(library_); }

  template <typename Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(dlsym(library_, name));
  }

  ZarnECKeyboardController* CreateKeyboardController() const {
    return Find<ZarnECKeyboardController*()>("CreateZarnECKeyboardControllerClassInstance")();
  }
  RGBControllerInterface* CreateKeyboard(ZarnECKeyboardController* controller) const {
    return Find<RGBControllerInterface*(ZarnECKeyboardController*)>("CreateRGBController_ZarnECKeyboardClassInstance")(
        controller);
  }
  std::unique_ptr<RGBControllerInterface> CreateKeyboard() const {
    return std::unique_ptr<RGBControllerInterface>(CreateKeyboard(CreateKeyboardController()));
  }

 private:
  void* library_;
};

/// Calls a slot by its position in the virtual table, with the arguments as they are typed here.
template <typename Result = void, typename... Arguments>
Result CallSlot(RGBControllerInterface* controller, std::size_t slot, Arguments... arguments) {
  using Slot = Result (*)(void*, Arguments...);
  const auto* const table = *reinterpret_cast<const Slot* const*>(controller);
  return table[slot](controller, arguments...);
}

/// Takes a buffer over that a slot handed out; its first four bytes tell its size.
inline std::vector<std::uint8_t> Take(std::uint8_t* buffer) {
  const std::unique_ptr<std::uint8_t[]> owner(buffer);
  std::size_t size = 0;
  for (std::size_t i = 4; i-- > 0;) size = size << 8 | buffer[i];
  return {buffer, buffer + size};
}

}  // namespace test
