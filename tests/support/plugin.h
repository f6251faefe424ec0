/// The plug-in as a host has it: loaded, its exports found by name, its controllers' slots called by position.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "controller/description_format.h"
#include "host/library.h"
#include "tests/support/temporary_folder.h"
#include "zarn_lighting/rgb_controller_interface.h"

class ZarnECGlobalController;
class ZarnECKeyboardController;
class ZarnHIDKeyboardController;

namespace test {

/// What discovery answered. The initial values show what it left alone.
struct Discovered {
  std::int32_t count = 0;
  std::wstring names = L"as it was";
  std::uint32_t interface_type = 99;
  std::wstring hardware_id = L"as it was";
  std::wstring usage_page = L"as it was";

  friend bool operator==(const Discovered&, const Discovered&) = default;
};

class Plugin {
 public:
  explicit Plugin(const std::filesystem::path& path = ZARN_LIGHTING_PATH) : library_(path) {
    if (!library_) throw std::runtime_error(zarn::host::Library::LoadError(path));
  }

  template <typename Function>
  Function* Find(const std::string& name) const {
    void* const address = library_.Find(name);
    if (address == nullptr) throw std::runtime_error("no export " + name);
    return reinterpret_cast<Function*>(address);
  }

  Discovered Discover() const {
    Discovered found;
    found.count = Find<std::int32_t(std::wstring&, std::uint32_t&, std::wstring&, std::wstring&)>("CheckDeviceStatus")(
        found.names, found.interface_type, found.hardware_id, found.usage_page);
    return found;
  }

  /// By the device names that discovery answers.
  void* CreateController(const std::string& name) const {
    if (name == "ZarnECKeyboard") return MakeController<ZarnECKeyboardController>(name);
    if (name == "ZarnECGlobal") return MakeController<ZarnECGlobalController>(name);
    return MakeController<ZarnHIDKeyboardController>(name);
  }
  std::unique_ptr<RGBControllerInterface> CreateAround(const std::string& name, void* controller) const {
    if (name == "ZarnECKeyboard") return MakeDevice<ZarnECKeyboardController>(name, controller);
    if (name == "ZarnECGlobal") return MakeDevice<ZarnECGlobalController>(name, controller);
    return MakeDevice<ZarnHIDKeyboardController>(name, controller);
  }
  std::unique_ptr<RGBControllerInterface> Create(const std::string& name) const {
    return CreateAround(name, CreateController(name));
  }

 private:
  template <typename Controller>
  void* MakeController(const std::string& name) const {
    return Find<Controller*()>("Create" + name + "ControllerClassInstance")();
  }
  template <typename Controller>
  std::unique_ptr<RGBControllerInterface> MakeDevice(const std::string& name, void* controller) const {
    const auto make = Find<RGBControllerInterface*(Controller*)>("CreateRGBController_" + name + "ClassInstance");
    return std::unique_ptr<RGBControllerInterface>(make(static_cast<Controller*>(controller)));
  }

  zarn::host::Library library_;
};

/// A copy of the plug-in, loaded for the first time, as in a process that has just begun.
class FreshPlugin {
 public:
  Plugin* operator->() { return &plugin_; }

 private:
  static Plugin LoadCopy() {
    const TemporaryFolder folder;  // a loaded file may be removed; Wine keeps it until its prefix goes
    const std::filesystem::path original = ZARN_LIGHTING_PATH;
    const std::filesystem::path copy = folder.path() / original.filename();
    std::filesystem::copy_file(original, copy);
    return Plugin(copy);
  }

  Plugin plugin_ = LoadCopy();
};

/// Calls a slot by its position in the virtual table, with the arguments as they are typed here.
template <typename Result = void, typename... Arguments>
Result CallSlot(RGBControllerInterface* controller, std::size_t slot, Arguments... arguments) {
  using Slot = Result (*)(void*, Arguments...);
  const auto* const table = *reinterpret_cast<const Slot* const*>(controller);
  return table[slot](controller, arguments...);
}

/// Takes over a buffer from a slot. Its first four bytes tell its size.
inline std::vector<std::uint8_t> Take(std::uint8_t* buffer) {
  const std::unique_ptr<std::uint8_t[]> owner(buffer);
  std::size_t size = 0;
  for (std::size_t i = 4; i-- > 0;) size = size << 8 | buffer[i];
  return {buffer, buffer + size};
}

inline ControllerRecords DescriptionOf(RGBControllerInterface& controller) {
  ControllerRecords records;
  EXPECT_TRUE(UnpackDescription(records, Take(controller.PackDescription(3)), 3));
  return records;
}

}  // namespace test
